// Units enrol while the library is loaded, withdraw at unload, and are registered in a context in the
// order of enrolment.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/snmp/HandlerRegistration.h"

namespace {

std::vector<std::string> calls;

class Unit : public Snmp::HandlerRegistration {
 public:
  explicit Unit(std::string name) : name_(std::move(name)) {}
  void registerInContext(Quor::String8 context) override { calls.push_back(name_ + "@" + context.str()); }

 private:
  std::string name_;
};

TEST(UnitEnrolment, EveryEnrolledUnitIsRegisteredInTheContextInOrder) {
  calls.clear();
  Unit first("first"), second("second");
  Snmp::AutoRegistree a(&first), b(&second);
  Snmp::registerAllInContext("red");
  EXPECT_EQ(calls, (std::vector<std::string>{"first@red", "second@red"}));
}

TEST(UnitEnrolment, AWithdrawnUnitIsNoLongerRegistered) {
  calls.clear();
  const std::size_t before = Snmp::enrolledUnits();
  Unit staying("staying"), leaving("leaving");
  Snmp::AutoRegistree stays(&staying);
  {
    std::optional<Snmp::AutoRegistree> leaves(&leaving);
    EXPECT_EQ(Snmp::enrolledUnits(), before + 2);
  }
  EXPECT_EQ(Snmp::enrolledUnits(), before + 1);
  Snmp::registerAllInContext("");
  EXPECT_EQ(calls, (std::vector<std::string>{"staying@"}));
}

}  // namespace
