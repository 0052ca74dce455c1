#pragma once
// The VRFs that exist, as network namespaces named ns-<vrf> in a directory (/var/run/netns, where
// ip-netns(8) keeps them), followed live through inotify on the agent's event loop.
//
// A namespace counts once it can be entered: ip-netns creates the file first and bind-mounts the
// namespace onto it a moment later, so a new name is checked for the namespace file system and,
// until it shows, checked again every tenth of a second for up to ten seconds. A name that is
// removed or renamed away is gone at once. "ns-default" is not a VRF: the default VRF is the
// process's own namespace. Names that make no VRF name (empty, longer than 100 bytes) are ignored.
#include <functional>
#include <map>
#include <set>
#include <string>

#include "platform/pelt/VrfName.h"
#include "platform/quor/Clock.h"

namespace Sources::Linux {

// The VRF of a namespace name ("ns-red" is "red"), or the empty name for one that names no VRF.
L3::VrfName vrfOfNamespace(std::string_view netns);
// The namespace name of a VRF.
std::string namespaceOfVrf(const L3::VrfName& vrf);

class NetnsDirectory {
 public:
  using Change = std::function<void(const L3::VrfName& vrf, bool present)>;

  // Watches `dir` (made if missing) and calls `changed` for each VRF that appears or goes, from the
  // event loop; the VRFs present now are in vrfs() at once, and are not announced. Raises
  // std::system_error when the directory cannot be watched.
  NetnsDirectory(std::string dir, Change changed);
  ~NetnsDirectory();
  NetnsDirectory(const NetnsDirectory&) = delete;
  NetnsDirectory& operator=(const NetnsDirectory&) = delete;

  const std::set<L3::VrfName>& vrfs() const noexcept { return vrfs_; }
  const std::string& dir() const noexcept { return dir_; }

 private:
  class Retry;
  void onReadable();
  void appeared(const std::string& name);
  void gone(const std::string& name);
  void checkPending();
  bool enterable(const std::string& name) const;

  std::string dir_;
  Change changed_;
  int fd_ = -1;
  std::set<L3::VrfName> vrfs_;
  std::map<std::string, double> pending_;  // name to the time its checks stop
  Quor::Ptr<Retry> retry_;
};

}  // namespace Sources::Linux
