#pragma once
// Test helper: follows the collections and switches of a store and writes one line per
// notification, such as "vrfConfig red" or "ipIntfConfig Ethernet1", in the order they come.
#include <string>
#include <vector>

#include "platform/morvane/Store.h"
#include "tests/support/TestSupport.h"

namespace ScenarioTest {

using Lines = std::vector<std::string>;

using TestSupport::text;

class StoreRecorder {
 public:
  explicit StoreRecorder(const Morvane::Store& store);
  Lines take() { return std::exchange(lines_, {}); }
  void write(std::string line) { lines_.push_back(std::move(line)); }

 private:
  Lines lines_;
  std::vector<Quor::Ptr<Quor::Reactor>> reactors_;
};

}  // namespace ScenarioTest
