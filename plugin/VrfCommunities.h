#pragma once
// SNMPv2c communities that follow the VRFs. The configuration line (snmpd.conf, after the plug-in's
// dlmod line)
//
//   ipsnmpVrfCommunity COMMUNITY
//
// gives the context of every VRF that is up the community "COMMUNITY@<vrf>", mapped as COMMUNITY is
// mapped in the default context: for each of COMMUNITY's com2sec lines without -Cn, an entry with the
// same source and security name, in the same order, that leads to the VRF's context. So the groups,
// access lines and views that apply to COMMUNITY apply to COMMUNITY@<vrf> unchanged (an access line
// of context "" with "prefix" admits every context). Entries come when a context opens and go when it
// closes; other communities, and COMMUNITY@<vrf> of a VRF that is not up, map to nothing. Only IPv4
// sources are followed (com2sec, which serves UDP and TCP): net-snmp 5.9 cannot take one com2sec6
// entry back.
//
// A line is checked whole when it is read: it must name one community that com2sec lines of the
// configuration map in the default context, or it is refused with the reason and changes nothing.
// When snmpd reads its configuration again it drops the lines, and the entries with them, first.
#include <map>
#include <string>
#include <vector>

#include "platform/snmp/Com2Sec.h"

class VrfCommunities {
 public:
  // Registers the line with the application that is reading its configuration. One at a time.
  VrfCommunities();
  // The context of a VRF opens, or closes: its communities come, or go.
  void contextIs(const std::string& context);
  void contextDel(const std::string& context);
  // Takes every entry back and the line away.
  ~VrfCommunities();

  VrfCommunities(const VrfCommunities&) = delete;
  VrfCommunities& operator=(const VrfCommunities&) = delete;

 private:
  struct Community {
    std::string name;
    std::vector<Snmp::CommunitySource> sources;
  };
  static void parseLine(const char* token, char* line);
  static void releaseLines();
  void communityIs(Community community);
  void entriesAdd(const Community& community, const std::string& context);

  std::vector<Community> communities_;
  // Every open context, with the entries of every community in it.
  std::map<std::string, std::vector<Snmp::Com2SecEntry>> entriesByContext_;
};
