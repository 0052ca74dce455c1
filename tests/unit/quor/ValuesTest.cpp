// Pointers, shared strings and trace switches: the small contracts everything else stands on.
#include <gtest/gtest.h>

#include <sstream>

#include "platform/quor/Ptr.h"
#include "platform/quor/String.h"
#include "platform/quor/Trace.h"

namespace {

struct Thing : Quor::PtrInterface {
  explicit Thing(bool* destroyed) : destroyed_(destroyed) {}
  ~Thing() override { *destroyed_ = true; }
  void zeroReferencesIs(bool zero) override { zeroes.push_back(zero); }
  std::vector<bool> zeroes;
  bool* destroyed_;
};

TEST(Pointers, ValidPtrRefusesNull) {
  try {
    Quor::ValidPtr<Thing> p(Quor::Ptr<Thing>{});
    FAIL() << "no exception";
  } catch (const Quor::RangeException& e) {
    EXPECT_EQ(e.text(), "null ValidPtr");
    EXPECT_STREQ(e.name(), "Quor::RangeException");
  }
}

TEST(Pointers, LastReferenceDestroysUnlessNondestructing) {
  bool destroyed = false;
  Thing* raw = new Thing(&destroyed);
  raw->isNondestructingIs(true);
  { Quor::Ptr<Thing> p(raw); }
  EXPECT_FALSE(destroyed);
  { Quor::Ptr<Thing> p(raw); }
  EXPECT_EQ(raw->zeroes, (std::vector<bool>{false, true, false, true})) << "left zero, reached it, twice";
  raw->isNondestructingIs(false);
  { Quor::Ptr<Thing> p(raw); }
  EXPECT_TRUE(destroyed);
}

TEST(Pointers, ThreadSafeCountsBehaveTheSame) {
  Quor::VFPtrInterface::enableThreadSafePointers = true;
  bool destroyed = false;
  {
    Quor::Ptr<Thing> a(new Thing(&destroyed));
    Quor::Ptr<Thing> b = a;
    EXPECT_EQ(a->references(), 2u);
  }
  Quor::VFPtrInterface::enableThreadSafePointers = false;
  EXPECT_TRUE(destroyed);
}

TEST(Strings, CopiesShareOneBufferAndCompareByBytes) {
  Quor::String8 a("red");
  Snmp::String b = a;
  EXPECT_EQ(a.buffer(), b.buffer());
  EXPECT_EQ(Quor::String8("red"), b);
  EXPECT_NE(Quor::String8("red").buffer(), a.buffer());
  EXPECT_TRUE(Quor::String8().empty());
  EXPECT_EQ(Quor::String8(), Quor::String8(""));
}

TEST(Strings, OrderIsShorterFirstThenUnsignedBytes) {
  EXPECT_LT(Quor::String8("zz"), Quor::String8("aaa"));
  EXPECT_LT(Quor::String8("a\x01"), Quor::String8("a\xff"));
  EXPECT_FALSE(Quor::String8("ab") < Quor::String8("ab"));
}

TEST(Strings, FormatWorksLikePrintf) {
  EXPECT_EQ(Quor::format("snmp/ip/vrf.mibs/%s.ipmib", "red"), "snmp/ip/vrf.mibs/red.ipmib");
  EXPECT_EQ(Quor::format("%d", 42).size(), 2u);
}

TEST(Trace, StatementsFormatOnlyWhenTheirLevelIsOn) {
  Quor::Tracer tracer("TraceTest", "TraceTest");
  int formatted = 0;
  auto count = [&] { return ++formatted; };
  QTRACE(tracer, 3, "x" << count());
  EXPECT_EQ(formatted, 0);
  Quor::traceConfigure("TraceTest:2-3");
  std::ostringstream seen;
  Quor::coverageStream_ = &seen;
  QTRACE(tracer, 3, "x" << count());
  QTRACE(tracer, 4, "y");
  Quor::coverageStream_ = nullptr;
  EXPECT_EQ(formatted, 1);
  EXPECT_EQ(seen.str(), "TraceTest/3 x1\nTraceTest/4 y\n") << "the coverage stream sees everything";
  EXPECT_THROW(Quor::traceConfigure("TraceTest:x"), Quor::RangeException);
}

}  // namespace
