// The textual value form: what values print as, and how the parsing machinery reads it back.
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

std::string rangeFailure(const std::function<void()>& parse) {
  try {
    parse();
  } catch (const Quor::RangeException& e) {
    return e.text();
  }
  return "no exception";
}

TEST(StrepPrinting, StructFormListsAttributesInOrder) {
  Sample s;
  s.port = 161;
  s.label = "eth0";
  EXPECT_EQ(s.strep(), "Value('Test::Sample', ** {'port': 161, 'label': 'eth0'})");
  EXPECT_EQ(Quor::valueFormStrep("Test::Empty", {}), "Value('Test::Empty', ** {})");
  EXPECT_EQ(Quor::valueToStrep(U64(18446744073709551615ull)), "18446744073709551615");
}

TEST(StrepPrinting, RawPointerIsAnAddressOrNone) {
  int x = 0;
  EXPECT_EQ(Quor::valueToStrepOfRawPtr(nullptr), "None");
  EXPECT_EQ(Quor::valueToStrepOfRawPtr(&x), Quor::format("%p", static_cast<void*>(&x)));
}

TEST(StrepParsing, RoundTripKeepsEveryByteOfAString) {
  const char raw[] = {'a', '\'', 'b', '\\', '\n', '\0', char(0xff), 'z'};
  Sample s;
  s.port = 7;
  s.label = Snmp::String(raw, sizeof raw);
  String8 text = s.strep();
  EXPECT_EQ(text, "Value('Test::Sample', ** {'port': 7, 'label': 'a\\'b\\\\\\x0a\\x00\\xffz'})");
  Sample back = Quor::strepToValue<Sample>(text);
  EXPECT_EQ(back.port, 7u);
  EXPECT_EQ(back.label, s.label);
}

TEST(StrepParsing, BlanksAreOptionalWhereTheFormAllowsThem) {
  Sample s = Quor::strepToValue<Sample>(String8("  Value ( 'Test::Sample' , ** { 'label' :'x' ,  'port' : 9 } )  "));
  EXPECT_EQ(s.port, 9u);
  EXPECT_EQ(s.label, "x");
  s = Quor::strepToValue<Sample>(String8("Value('Test::Sample',**{'port':1})"));
  EXPECT_EQ(s.port, 1u);
}

TEST(StrepParsing, MissingAttributesKeepDefaultsAndRepeatsTakeTheLast) {
  Sample s = Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {})"));
  EXPECT_EQ(s.port, 0u);
  EXPECT_TRUE(s.label.empty());
  s = Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {'port': 1, 'port': 2})"));
  EXPECT_EQ(s.port, 2u);
}

TEST(StrepParsing, EmptyTextGivesTheDefaultOnlyWhenOneIsOffered) {
  Sample fallback;
  fallback.port = 5;
  EXPECT_EQ(Quor::strepToValue<Sample>(String8(), fallback).port, 5u);
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8()); }),
            "expected \"Value\" at column 0, found the end of the text");
}

TEST(StrepFailures, TextBehindTheValueIsJunkAtItsColumn) {
  String8 text("Value('Test::Sample', ** {}) x");
  EXPECT_EQ(rangeFailure([&] { Quor::strepToValue<Sample>(text); }),
            "junk at column 29 deserializing Value('Test::Sample', ** {}) x");
}

TEST(StrepFailures, CutFormIsPrematureEnd) {
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {")); }),
            "premature end of value type Sample");
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {'port': 1 ")); }),
            "premature end of value type Sample");
}

TEST(StrepFailures, UnknownAttributeIsNamed) {
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {'mtu': 1})")); }),
            "Sample has no such attribute: mtu");
}

TEST(StrepFailures, MissingTokenNamesWhatWasExpectedAndWhere) {
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8("Value('Test::Other', ** {})")); }),
            "expected \"'Test::Sample'\" at column 6, found \"'Test::Other', ** {}...\"");
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {'port': 1 'label': 'a'})")); }),
            "expected \",\" at column 36, found \"'label': 'a'})\"");
}

TEST(StrepFailures, BadAttributeValueNamesTheAttribute) {
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {'port': x})")); }),
            "cannot convert \"x})\" at column 34 to integer deserializing attribute port");
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {'port': 4294967296})")); }),
            "cannot convert \"4294967296})\" at column 34 to integer deserializing attribute port");
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {'label': 'abc")); }),
            "unterminated string at column 35 deserializing attribute label");
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<Sample>(String8("Value('Test::Sample', ** {'label': '\\q'})")); }),
            "cannot convert \"'\\q'})\" at column 35 to quoted string deserializing attribute label");
}

TEST(StrepFailures, NumbersAreDecimalOnly) {
  EXPECT_EQ(Quor::strepToValue<U64>(String8("18446744073709551615")), 18446744073709551615ull);
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<U64>(String8("-1")); }),
            "cannot convert \"-1\" at column 0 to integer");
  EXPECT_EQ(rangeFailure([] { Quor::strepToValue<U64>(String8("0x10")); }), "junk at column 1 deserializing 0x10");
}

}  // namespace
