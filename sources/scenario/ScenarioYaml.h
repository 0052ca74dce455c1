#pragma once
// The checked reading of a scenario's YAML, shared by the readers of its sections: each helper reads
// one kind of value and ends the whole reading with a ScenarioError "<file>:<line>: <problem>" when
// it finds anything else. A problem with an entry is reported at its key's line, since a value may
// be empty and then has no place of its own.
#include <yaml-cpp/yaml.h>

#include <charconv>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "platform/pelt/VrfName.h"
#include "sources/scenario/ScenarioParser.h"

namespace Sources::ScenarioYaml {

// One key of a YAML map with its value.
struct Entry {
  std::string key;
  YAML::Node value;
  YAML::Mark mark;
};

class Checker {
 public:
  explicit Checker(std::string_view fileName) : fileName_(fileName) {}

  [[noreturn]] void fail(const YAML::Mark& at, const std::string& problem) const;
  // The line of `at` as the errors give it, counted from 1.
  static int lineOf(const YAML::Mark& at) { return at.line + 1; }

  // The entries of a map, in file order; an empty value is an empty map. `known` lists the keys
  // allowed, or is empty for a map of names.
  std::vector<Entry> entries(const YAML::Node& map, const YAML::Mark& at, const std::string& where,
                             std::initializer_list<std::string_view> known = {}) const;
  bool boolean(const Entry& e, const std::string& where) const;
  std::string text(const Entry& e, const std::string& where) const;
  // A whole number of `min` to `max`.
  unsigned long long number(const Entry& e, const std::string& where, unsigned long long min,
                            unsigned long long max) const;
  L3::VrfName vrfName(const std::string& name, const YAML::Mark& at) const;

  template <class T>
  T integer(const Entry& e, const std::string& where) const {
    const std::string digits = e.value.IsScalar() ? e.value.Scalar() : std::string();
    const char* end = digits.data() + digits.size();
    T value{};
    auto [stop, ec] = std::from_chars(digits.data(), end, value);
    if (digits.empty() || ec != std::errc() || stop != end)
      fail(e.mark, "'" + e.key + "' in " + where + " must be a whole number from " +
                       std::to_string(std::numeric_limits<T>::min()) + " to " +
                       std::to_string(std::numeric_limits<T>::max()) + shown(e.value));
    return value;
  }

  // A value of a platform type through its T::parse; `expected` says what it should have been.
  template <class T>
  T parsed(const Entry& e, const std::string& where, const std::string& expected) const {
    if (e.value.IsScalar())
      if (auto value = T::parse(e.value.Scalar())) return *value;
    fail(e.mark, "'" + e.key + "' in " + where + " must be " + expected + shown(e.value));
  }

  static std::string shown(const YAML::Node& value) {
    return value.IsScalar() ? ", not '" + value.Scalar() + "'" : std::string();
  }
  static YAML::Mark markOf(const YAML::Node& node, const YAML::Mark& fallback) {
    return node.Mark().is_null() ? fallback : node.Mark();
  }

 private:
  std::string fileName_;
};

}  // namespace Sources::ScenarioYaml
