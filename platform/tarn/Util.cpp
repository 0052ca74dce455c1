#include "platform/tarn/Util.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace Tarn {

namespace {
std::string environmentOr(const char* name, const char* fallback) {
  const char* value = std::getenv(name);
  return value && *value ? value : fallback;
}
}  // namespace

std::string RootPath() { return environmentOr("TARN_ROOT", "/dev/shm/tarn"); }

std::string Util::writeCorruptionFile(std::string_view tableName, std::string_view message) {
  std::string name(tableName);
  for (char& c : name)
    if (c == '/') c = '.';
  auto now = std::chrono::system_clock::now().time_since_epoch();
  std::filesystem::path dir = environmentOr("TARN_CORRUPTION_DIR", "/var/tmp/tarn-corruption");
  std::filesystem::path file = dir / (name + "." + std::to_string(::getpid()) + "." +
                                      std::to_string(std::chrono::duration_cast<std::chrono::microseconds>(now).count()));
  std::error_code ignored;
  std::filesystem::create_directories(dir, ignored);
  std::ofstream out(file);
  out << "table: " << tableName << "\nmessage: " << message << "\n";
  return out ? file.string() : std::string();
}

}  // namespace Tarn
