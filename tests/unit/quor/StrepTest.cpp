// The textual value form: a value prints as a form that parses back to it, byte for byte.
#include <gtest/gtest.h>

#include "platform/quor/Strep.h"

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

}  // namespace
