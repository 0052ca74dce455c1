#pragma once
// The table side of the Linux source, run in its own process (ipsnmp-linux-tables): the IPv4 and IPv6
// routes of every namespace's main table into the route and forwarding tables of its VRF (one pair
// per family), the IPv4
// neighbours of all namespaces into the one ARP table, and an id for every VRF into the VRF-id
// table.
//
// Each namespace has its own netlink socket for links (whose names the records carry), nexthop
// objects, routes and neighbours. The tables are written by difference: after a (re)synchronisation every prefix and
// neighbour of the namespace is recomputed and what the tables hold beyond it is erased; between
// them only what the events touched. The writer takes over the files of a predecessor, so a writer
// started again corrects what changed while none ran, and the tables keep the last state written
// while it is away. Once every namespace present at the start has been synchronised, the VRF ids
// and neighbours of VRFs that have gone meanwhile are erased; the route files of such a VRF are left
// as they are, unmounted by anyone.
//
// A VRF that goes has its routes, FECs, neighbours and VRF id erased; its files stay, empty, so that
// a reader still mounted on them reads an empty table, and they are used again if it comes back.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/pelt/VrfName.h"
#include "sources/linux/NamespaceRoutes.h"
#include "sources/linux/RouteTables.h"
#include "sources/linux/RtnlSession.h"
#include "sources/linux/SharedTables.h"

namespace Sources::Linux {

class NetnsDirectory;

class TableMirror {
 public:
  // The tables under `root` (Tarn::RootPath() in the writer), the VRFs in `netnsDir`. Raises
  // std::system_error when the tables or the process's own namespace cannot be opened.
  TableMirror(const std::string& root, const std::string& netnsDir);
  ~TableMirror();
  TableMirror(const TableMirror&) = delete;
  TableMirror& operator=(const TableMirror&) = delete;

  // Whether every namespace present at the start has been synchronised and written.
  bool initialized() const noexcept { return sweptAbsent_; }

 private:
  struct Namespace;
  void open(const L3::VrfName& vrf);
  void close(const L3::VrfName& vrf);
  void onReadable(Namespace& ns);
  void flush(Namespace& ns);
  void syncAll(Namespace& ns);
  // The routes of either family: the kernel's and those the tables hold written anew, or all erased.
  template <class Tables>
  void syncRoutes(Namespace& ns, Tables& tables, const std::vector<typename Tables::Prefix>& kernel);
  template <class Tables>
  static void emptied(Tables& tables);
  template <class Tables>
  void routeIs(Namespace& ns, Tables& tables, const typename Tables::Prefix& prefix);
  void neighbourIs(Namespace& ns, const NamespaceRoutes::NeighbourKey& key);
  void sweepAbsentVrfs();

  std::string root_;
  ArpTableWriter arp_;
  VrfIdTableWriter vrfIds_;
  std::map<L3::VrfName, std::unique_ptr<Namespace>> namespaces_;
  std::unique_ptr<NetnsDirectory> netnsDirectory_;
  bool sweptAbsent_ = false;
};

}  // namespace Sources::Linux
