// Every kept input of every fuzz target, seeds and former crashers alike, run through the target's
// entry in the normal build: an input that crashes, trips a sanitizer, raises what the parser must
// not raise or breaks a target's property fails here.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <vector>

#include "FuzzTargets.h"

namespace {

struct Target {
  const char* name;
  int (*entry)(const std::uint8_t*, std::size_t);
};

const Target targets[] = {
    {"strep", Fuzz::strep},           {"proc_net", Fuzz::procNet},     {"scenario", Fuzz::scenario},
    {"table_file", Fuzz::tableFile},
};

std::vector<std::filesystem::path> inputsOf(const char* target) {
  std::vector<std::filesystem::path> inputs;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(IPSNMP_FUZZ_CORPUS) / target))
    if (entry.is_regular_file()) inputs.push_back(entry.path());
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

class CorpusReplay : public ::testing::TestWithParam<Target> {};

TEST_P(CorpusReplay, EveryKeptInputPassesItsTarget) {
  const std::vector<std::filesystem::path> inputs = inputsOf(GetParam().name);
  ASSERT_FALSE(inputs.empty()) << "no corpus for " << GetParam().name;
  for (const auto& path : inputs) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    EXPECT_NO_THROW(GetParam().entry(bytes.data(), bytes.size())) << path;
  }
}

INSTANTIATE_TEST_SUITE_P(Targets, CorpusReplay, ::testing::ValuesIn(targets),
                         [](const ::testing::TestParamInfo<Target>& target) { return std::string(target.param.name); });

}  // namespace
