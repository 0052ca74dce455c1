// Values reach the wire as the MIB defines them: the bytes of a conversion, given to
// snmp_set_var_typed_value, make the integer the manager reads.
#include <gtest/gtest.h>

#include "frontend/Conversions.h"
#include "frontend/ElementaryConversions.h"
#include "platform/snmp/NetSnmp.h"

namespace {

// What a manager would read after a handler set the varbind from `bytes`.
long integerOnTheWire(const unsigned char* bytes, int length) {
  netsnmp_variable_list vb{};
  EXPECT_EQ(snmp_set_var_typed_value(&vb, ASN_INTEGER, bytes, length), 0);
  long value = *vb.val.integer;
  snmp_free_var_internals(&vb);
  return value;
}

long convertedInteger(int value) {
  unsigned char buffer[1024];
  int length = SnmpConvert<int, S32ToAsnIntegerF>(value, buffer, sizeof buffer);
  EXPECT_GT(length, 0);
  return integerOnTheWire(buffer, length);
}

TEST(IntegerConversion, KeepsTheValueAcrossTheRange) {
  EXPECT_EQ(convertedInteger(0), 0);
  EXPECT_EQ(convertedInteger(65535), 65535);
  EXPECT_EQ(convertedInteger(2147483647), 2147483647);
}

TEST(IntegerConversion, KeepsNegativeValuesNegative) {
  EXPECT_EQ(convertedInteger(-1), -1);
  EXPECT_EQ(convertedInteger(-2147483647 - 1), -2147483647L - 1);
}

TEST(IntegerConversion, FailsWithoutRoom) {
  unsigned char buffer[3];
  EXPECT_LT(S32ToAsnIntegerF()(7, buffer, sizeof buffer), 0);
  EXPECT_LT(S32ToAsnIntegerF()(7, nullptr, 1024), 0);
}

TEST(ForwardingConversion, RoutingOnIsForwardingOne) {
  unsigned char buffer[1024];
  int length = IpRoutingToAsnInteger(true, buffer, sizeof buffer);
  ASSERT_GT(length, 0);
  EXPECT_EQ(integerOnTheWire(buffer, length), 1);
}

TEST(ForwardingConversion, RoutingOffIsNotForwardingTwo) {
  unsigned char buffer[1024];
  int length = IpRoutingToAsnInteger(false, buffer, sizeof buffer);
  ASSERT_GT(length, 0);
  EXPECT_EQ(integerOnTheWire(buffer, length), 2);
}

TEST(ForwardingConversion, ReportsAFailedConversion) {
  unsigned char buffer[2];
  EXPECT_LT(IpRoutingToAsnInteger(true, buffer, sizeof buffer), 0);
}

}  // namespace
