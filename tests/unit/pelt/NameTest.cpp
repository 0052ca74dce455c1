// Interface identifiers and VRF names: the cheap identity of an interned name, the orders, and
// the length limit of a VRF name.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "platform/pelt/IntfId.h"
#include "platform/pelt/VrfName.h"

namespace {

TEST(IntfId, EqualNamesShareOneRecordSoCopiesAndComparisonsAreCheap) {
  Pelt::IntfId a("Ethernet1");
  Pelt::IntfId b(std::string("Ether") + "net1");
  EXPECT_EQ(a, b);
  EXPECT_EQ(&a.stringValue(), &b.stringValue()) << "one interned record";
  EXPECT_EQ(sizeof(Pelt::IntfId), sizeof(void*));
  EXPECT_NE(a, Pelt::IntfId("Ethernet2"));
  EXPECT_EQ(a.hash(), b.hash());
}

TEST(IntfId, TheEmptyNameIsTheDefaultValueAndTestsEmpty) {
  Pelt::IntfId none;
  EXPECT_TRUE(none.empty());
  EXPECT_FALSE(none);
  EXPECT_EQ(Pelt::IntfId(""), none);
  EXPECT_TRUE(Pelt::IntfId("Vlan10"));
  EXPECT_EQ(none.stringValue(), "");
}

TEST(IntfId, OrdersByNameBytesWithTheEmptyNameFirst) {
  Pelt::IntfId none, e1("Ethernet1"), e10("Ethernet10"), e2("Ethernet2"), v("Vlan1");
  EXPECT_TRUE(none < e1);
  EXPECT_TRUE(e1 < e10);
  EXPECT_TRUE(e10 < e2);
  EXPECT_TRUE(e2 < v);
  EXPECT_FALSE(e1 < e1);
  EXPECT_FALSE(e2 < e10);
}

TEST(IntfId, HandleInitializedRenamesTheIdentifier) {
  Pelt::IntfId id;
  id.handleInitialized("Loopback0");
  EXPECT_EQ(id, Pelt::IntfId("Loopback0"));
  id.handleInitialized("");
  EXPECT_TRUE(id.empty());
}

TEST(IntfId, PrintsTheNameAndItsStrepParsesBack) {
  std::ostringstream out;
  out << Pelt::IntfId("Ethernet3");
  EXPECT_EQ(out.str(), "Ethernet3");
  EXPECT_EQ(Pelt::valueToStrep(Pelt::IntfId("Ethernet3")), "'Ethernet3'");
  EXPECT_EQ(Quor::strepToValue<Pelt::IntfId>("'Ethernet3'"), Pelt::IntfId("Ethernet3"));
  EXPECT_EQ(Quor::strepToValue<Pelt::IntfId>("''"), Pelt::IntfId());
}

TEST(VrfName, AcceptsOneHundredBytesAndRefusesOneHundredAndOne) {
  EXPECT_EQ(L3::VrfName(std::string(100, 'v')).stringValue().size(), 100u);
  try {
    L3::VrfName name(std::string(101, 'v'));
    FAIL() << "no exception";
  } catch (const Quor::RangeException& e) {
    EXPECT_EQ(e.text(), "VrfName::bytes > 100 not allowed");
  }
  EXPECT_THROW(L3::VrfName(Quor::Name(std::string(101, 'v'))), Quor::RangeException);
}

TEST(VrfName, TheEmptyNameIsNoVrfAndNotTheDefault) {
  L3::VrfName none;
  EXPECT_TRUE(none.empty());
  EXPECT_FALSE(none.isDefault());
  EXPECT_NE(none, L3::VrfName("default"));
  EXPECT_TRUE(L3::VrfName("default").isDefault());
  EXPECT_EQ(L3::VrfName("red"), Quor::Name("red"));
}

TEST(VrfName, OrdersByNameBytes) {
  EXPECT_TRUE(L3::VrfName("blue") < L3::VrfName("default"));
  EXPECT_TRUE(L3::VrfName("default") < L3::VrfName("red"));
  EXPECT_TRUE(L3::VrfName("red") < L3::VrfName("red2"));
}

}  // namespace
