#include <cstdlib>
#include <string>

#include "FuzzTargets.h"

namespace Fuzz {

namespace {

struct Scratch {
  Scratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ipsnmp-fuzz-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot make a directory like " + pattern);
    path = pattern;
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  std::filesystem::path path;
};

}  // namespace

const std::filesystem::path& scratchDirectory() {
  static const Scratch scratch;
  return scratch.path;
}

}  // namespace Fuzz
