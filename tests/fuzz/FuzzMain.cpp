// libFuzzer's entry for one target, chosen when the target is built (IPSNMP_FUZZ_ENTRY).
#include "FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return Fuzz::IPSNMP_FUZZ_ENTRY(data, size);
}
