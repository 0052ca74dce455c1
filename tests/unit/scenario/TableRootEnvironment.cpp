// The tables that the scenarios of these tests write go to a directory of this test process, never
// to the machine's /dev/shm/tarn.
#include <stdlib.h>

#include <filesystem>
#include <string>

namespace {

struct TableRoot {
  TableRoot() {
    char pattern[] = "/tmp/scenario-test-root-XXXXXX";
    path = ::mkdtemp(pattern);
    ::setenv("TARN_ROOT", path.c_str(), 1);
  }
  ~TableRoot() { std::filesystem::remove_all(path); }
  std::string path;
};

const TableRoot tableRoot;

}  // namespace
