// The textual value form: a value prints as a form that parses back to it, byte for byte, and a text
// that is no form is refused with where and why.
#include <gtest/gtest.h>

#include "platform/quor/Strep.h"
#include "tests/support/TestSupport.h"

namespace {

using Quor::String8;

// A value type built the way the system's keys are: a parsing constructor over readValueForm.
struct Sample {
  U32 port = 0;
  Snmp::String label;

  Sample() = default;
  Sample(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
    Quor::readValueForm(position, end, "'Test::Sample'", "Sample", [&](const String8& name) {
      if (name == "port") Quor::deserializeAttr(position, end, "port", port);
      else if (name == "label") Quor::deserializeAttr(position, end, "label", label);
      else return false;
      return true;
    });
  }
  String8 strep() const {
    return Quor::valueFormStrep("Test::Sample", {{"port", Quor::valueToStrep(port)}, {"label", Quor::valueToStrep(label)}});
  }
};

std::string parsed(const char* text) {
  std::string port;
  const std::string failure = TestSupport::failureOf([&] { port = std::to_string(Quor::strepToValue<Sample>(String8(text)).port); });
  return failure == "no failure" ? "port " + port : failure;
}

TEST(Strep, AValueReadsBackFromItsFormByteForByte) {
  const char raw[] = {'a', '\'', 'b', '\\', '\n', '\0', char(0xff), 'z'};
  Sample s;
  s.port = 4294967295u;
  s.label = Snmp::String(raw, sizeof raw);
  const String8 text = s.strep();
  EXPECT_EQ(text, "Value('Test::Sample', ** {'port': 4294967295, 'label': 'a\\'b\\\\\\x0a\\x00\\xffz'})");
  const Sample back = Quor::strepToValue<Sample>(text);
  EXPECT_EQ(back.port, s.port);
  EXPECT_EQ(back.label, s.label);
  Sample fallback;
  fallback.port = 5;
  EXPECT_EQ(Quor::strepToValue<Sample>(String8(), fallback).port, 5u) << "an empty text gives the default offered";
}

TEST(Strep, EachTextIsReadOrRefusedWithWhereAndWhy) {
  const std::pair<const char*, const char*> verdicts[] = {
      {"  Value ( 'Test::Sample' , ** { 'label' :'x' ,  'port' : 9 } )  ", "port 9"},
      {"Value('Test::Sample',**{'port':1})", "port 1"},
      {"Value('Test::Sample', ** {})", "port 0"},
      {"Value('Test::Sample', ** {'port': 1, 'port': 2})", "port 2"},
      {"", "expected \"Value\" at column 0, found the end of the text"},
      {"Value('Test::Sample', ** {}) x", "junk at column 29 deserializing Value('Test::Sample', ** {}) x"},
      {"Value('Test::Sample', ** {", "premature end of value type Sample"},
      {"Value('Test::Sample', ** {'port': 1 ", "premature end of value type Sample"},
      {"Value('Test::Sample', ** {'mtu': 1})", "Sample has no such attribute: mtu"},
      {"Value('Test::Other', ** {})", "expected \"'Test::Sample'\" at column 6, found \"'Test::Other', ** {}...\""},
      {"Value('Test::Sample', ** {'port': 1 'label': 'a'})", "expected \",\" at column 36, found \"'label': 'a'})\""},
      {"Value('Test::Sample', ** {'port': x})", "cannot convert \"x})\" at column 34 to integer deserializing attribute port"},
      {"Value('Test::Sample', ** {'port': 4294967296})",
       "cannot convert \"4294967296})\" at column 34 to integer deserializing attribute port"},
      {"Value('Test::Sample', ** {'port': -1})", "cannot convert \"-1})\" at column 34 to integer deserializing attribute port"},
      {"Value('Test::Sample', ** {'port': 0x10})", "expected \",\" at column 35, found \"x10})\""},
      {"Value('Test::Sample', ** {'label': 'abc", "unterminated string at column 35 deserializing attribute label"},
      {"Value('Test::Sample', ** {'label': '\\q'})",
       "cannot convert \"'\\q'})\" at column 35 to quoted string deserializing attribute label"},
  };
  for (const auto& [text, verdict] : verdicts) EXPECT_EQ(parsed(text), verdict) << text;
}

}  // namespace
