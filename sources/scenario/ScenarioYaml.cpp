#include "sources/scenario/ScenarioYaml.h"

#include <algorithm>

#include "platform/pelt/ParseText.h"
#include "platform/quor/Exception.h"

namespace Sources::ScenarioYaml {

void Checker::fail(const YAML::Mark& at, const std::string& problem) const {
  throw ScenarioError(fileName_ + ":" + std::to_string(lineOf(at)) + ": " + problem);
}

std::vector<Entry> Checker::entries(const YAML::Node& map, const YAML::Mark& at, const std::string& where,
                                    std::initializer_list<std::string_view> known) const {
  std::vector<Entry> out;
  if (map.IsNull()) return out;
  if (!map.IsMap()) fail(markOf(map, at), where + " must be a map of keys and values");
  for (auto it = map.begin(); it != map.end(); ++it) {
    YAML::Mark mark = markOf(it->first, at);
    if (!it->first.IsScalar()) fail(mark, "a key in " + where + " must be a name");
    const std::string& key = it->first.Scalar();
    if (known.size() && std::find(known.begin(), known.end(), key) == known.end())
      fail(mark, "unknown key '" + key + "' in " + where);
    for (const Entry& seen : out)
      if (seen.key == key) fail(mark, "duplicate key '" + key + "' in " + where);
    out.push_back({key, it->second, mark});
  }
  return out;
}

bool Checker::boolean(const Entry& e, const std::string& where) const {
  if (e.value.IsScalar() && (e.value.Scalar() == "true" || e.value.Scalar() == "false"))
    return e.value.Scalar() == "true";
  fail(e.mark, "'" + e.key + "' in " + where + " must be true or false" + shown(e.value));
}

std::string Checker::text(const Entry& e, const std::string& where) const {
  if (!e.value.IsScalar() || e.value.Scalar().empty())
    fail(e.mark, "'" + e.key + "' in " + where + " must be a non-empty text");
  return e.value.Scalar();
}

unsigned long long Checker::number(const Entry& e, const std::string& where, unsigned long long min,
                                   unsigned long long max) const {
  if (e.value.IsScalar())
    if (auto n = Pelt::parseDecimal(e.value.Scalar(), max); n && *n >= min) return *n;
  fail(e.mark, "'" + e.key + "' in " + where + " must be a whole number from " + std::to_string(min) + " to " +
                   std::to_string(max) + shown(e.value));
}

L3::VrfName Checker::vrfName(const std::string& name, const YAML::Mark& at) const {
  if (name.empty()) fail(at, "a VRF name must not be empty");
  try {
    return L3::VrfName(name);
  } catch (const Quor::RangeException& e) {
    fail(at, "VRF name of " + std::to_string(name.size()) + " bytes: " + e.text());
  }
}

}  // namespace Sources::ScenarioYaml
