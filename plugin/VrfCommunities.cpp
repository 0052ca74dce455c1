#include "plugin/VrfCommunities.h"

#include <algorithm>
#include <stdexcept>

#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"

namespace {

const char* const communityToken = "ipsnmpVrfCommunity";
const Quor::Tracer tracer{"Snmp", "VrfCommunities"};

// The one set of communities; the configuration callbacks take no argument of their own.
VrfCommunities* current = nullptr;

void refused(const std::string& why) { config_perror((std::string(communityToken) + ": " + why).c_str()); }

}  // namespace

VrfCommunities::VrfCommunities() {
  if (current) throw std::logic_error("the VRF communities exist already");
  current = this;
  register_app_config_handler(communityToken, &VrfCommunities::parseLine, &VrfCommunities::releaseLines,
                              "COMMUNITY  COMMUNITY@<vrf> for every VRF, mapped as COMMUNITY in the default context");
}

VrfCommunities::~VrfCommunities() {
  unregister_app_config_handler(communityToken);
  current = nullptr;
}

void VrfCommunities::contextIs(const std::string& context) {
  if (entriesByContext_.count(context)) return;
  entriesByContext_[context];
  for (const Community& community : communities_) entriesAdd(community, context);
}

void VrfCommunities::contextDel(const std::string& context) {
  if (entriesByContext_.erase(context)) QTRACE(tracer, 2, "communities of context \"" << context << "\" removed");
}

void VrfCommunities::parseLine(const char*, char* line) {
  char word[SPRINT_MAX_LEN];
  word[0] = '\0';
  const char* rest = copy_nword_const(line, word, sizeof word);
  const std::string name = word;
  if (name.empty()) return refused("needs a community, as in \"ipsnmpVrfCommunity public\"");
  if (rest) return refused("takes one community, not \"" + std::string(line) + "\"");
  if (!current) return;
  const auto& known = current->communities_;
  if (std::any_of(known.begin(), known.end(), [&](const Community& c) { return c.name == name; }))
    return refused("community \"" + name + "\" is named already");
  std::vector<Snmp::CommunitySource> sources = Snmp::defaultContextSources(name);
  if (sources.empty())
    return refused("no com2sec line maps the community \"" + name +
                   "\" in the default context, so there is nothing for its VRFs to copy (rocommunity lines "
                   "are not followed)");
  snmp_log(LOG_INFO, "ipsnmp: every VRF gets the community %s@<vrf>, mapped as %s by %zu com2sec line(s)\n",
           name.c_str(), name.c_str(), sources.size());
  current->communityIs({name, std::move(sources)});
}

void VrfCommunities::releaseLines() {
  if (!current) return;
  current->communities_.clear();
  for (auto& [context, entries] : current->entriesByContext_) entries.clear();
}

void VrfCommunities::communityIs(Community community) {
  communities_.push_back(std::move(community));
  for (const auto& [context, entries] : entriesByContext_) entriesAdd(communities_.back(), context);
}

void VrfCommunities::entriesAdd(const Community& community, const std::string& context) {
  const std::string name = community.name + "@" + context;
  std::vector<Snmp::Com2SecEntry>& entries = entriesByContext_[context];
  const std::size_t before = entries.size();
  try {
    for (const Snmp::CommunitySource& source : community.sources) entries.emplace_back(name, context, source);
  } catch (const std::runtime_error& e) {
    while (entries.size() > before) entries.pop_back();
    snmp_log(LOG_ERR, "ipsnmp: no community %s: %s\n", name.c_str(), e.what());
    return;
  }
  QTRACE(tracer, 2, "community " << name << " added to context \"" << context << "\"");
  for (const Snmp::CommunitySource& source : community.sources)
    if (!source.negated && !Snmp::v2cAccessIn(source.securityName, context))
      snmp_log(LOG_WARNING,
               "ipsnmp: %s reaches context \"%s\" as %s, whose group has no SNMPv2c access line for that "
               "context (an access line with context \"\" and \"prefix\" covers every VRF)\n",
               name.c_str(), context.c_str(), source.securityName.c_str());
}
