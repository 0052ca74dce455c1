#include "tests/support/TestSupport.h"

#include <stdlib.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>

#include "platform/quor/Clock.h"
#include "platform/quor/Exception.h"

namespace TestSupport {

std::string failureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Quor::Exception& e) {
    return e.text();
  } catch (const std::exception& e) {
    return e.what();
  }
  return "no failure";
}

TempDir::TempDir(const std::string& parent) {
  std::string pattern = parent + "/ipsnmp-test-XXXXXX";
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot make a directory like " + pattern);
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

bool turnUntil(const std::function<bool()>& done, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!done() && std::chrono::steady_clock::now() < deadline) Quor::activityManager()->runOnce(0.05);
  return done();
}

}  // namespace TestSupport
