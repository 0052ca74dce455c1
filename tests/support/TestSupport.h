#pragma once
// Helpers shared by the tests of every room. A test states its own expectations; these only fetch
// what it needs to compare.
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

namespace TestSupport {

// The text of what `action` raised (a Quor::Exception's text, any other exception's what()), or
// "no failure" when it returned.
std::string failureOf(const std::function<void()>& action);

// `value` as operator<< prints it.
template <class T>
std::string text(const T& value) {
  std::ostringstream out;
  out << std::boolalpha << value;
  return out.str();
}

// The whole of the file at `path`, "" when it cannot be read.
inline std::string fileText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// A directory of its own, made empty under `parent` and removed with everything in it.
class TempDir {
 public:
  explicit TempDir(const std::string& parent = "/tmp");
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const noexcept { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

// Turns the framework's event loop until `done` holds or `seconds` have passed; whether it holds.
bool turnUntil(const std::function<bool()>& done, double seconds = 5);

}  // namespace TestSupport
