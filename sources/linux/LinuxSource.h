#pragma once
// The Linux source: mirrors the kernel of this machine into the store and the shared-memory tables.
//
//   Morvane::Store store = Morvane::buildStore(root);
//   Sources::LinuxSource linux(store, {.tableWriter = "/usr/lib/ipsnmp/ipsnmp-linux-tables"});
//   if (std::string error = linux.start(); !error.empty()) ...
//
// A VRF is a network namespace ns-<vrf> under /var/run/netns, the default VRF the process's own
// namespace (see NetnsDirectory). The work is split by volume:
//
// - In the agent: links, addresses and forwarding of every namespace, into the store. Each
//   namespace has its own netlink socket, served by the event loop; a turn reads for at most
//   `readQuantum` seconds, and the store is brought in line with the kernel by difference once the
//   messages waiting have been read (see StoreImage.h for what goes where). A namespace whose dumps
//   are under way keeps its last image in the store until they are all in. Once every namespace
//   present at the start has been dumped, the store says that the agent is initialized.
// - In a child process, the table writer (ipsnmp-linux-tables, see TableMirror.h): routes, FECs,
//   neighbours and VRF ids, whose volume (a full Internet table) would hold the agent's loop up.
//
// If a socket fails, its namespace keeps what it had in the store; if the writer dies, the tables
// keep what it wrote until it is started again.
#include <map>
#include <memory>
#include <string>

#include "platform/morvane/Store.h"
#include "platform/quor/Clock.h"

namespace Sources {

namespace Linux {
class NetnsDirectory;
class WriterProcess;
}  // namespace Linux

class LinuxSource {
 public:
  struct Options {
    std::string tableWriter;           // path of ipsnmp-linux-tables; empty: no tables are written
    double forwardingPeriod = 2.0;     // seconds between reads of the forwarding sysctls
    double readQuantum = 0.003;        // seconds of netlink reading per turn of the loop
    std::string netnsDir = "/var/run/netns";
  };

  LinuxSource(Morvane::Store store, Options options);
  ~LinuxSource();
  LinuxSource(const LinuxSource&) = delete;
  LinuxSource& operator=(const LinuxSource&) = delete;

  // Opens the namespaces, starts the table writer and the first dumps; gives the empty text on
  // success, else why the source cannot run (nothing is then left running).
  std::string start();
  // Whether every namespace present at the start has been dumped and applied to the store.
  bool initialized() const noexcept { return initialized_; }
  // The table writer's process id, 0 while none runs.
  int tableWriterPid() const;

 private:
  struct Namespace;
  class Publish;
  class ForwardingClock;

  void stop();
  void openNamespace(const L3::VrfName& vrf);
  void closeNamespace(const L3::VrfName& vrf);
  void onReadable(Namespace& ns);
  void readForwarding();
  void publishSoon();
  void publish();

  Morvane::Store store_;
  Options options_;
  std::map<L3::VrfName, std::unique_ptr<Namespace>> namespaces_;
  std::unique_ptr<Linux::NetnsDirectory> netnsDirectory_;
  std::unique_ptr<Linux::WriterProcess> writer_;
  Quor::Ptr<Publish> publish_;
  Quor::Ptr<ForwardingClock> forwardingClock_;
  bool initialized_ = false;
};

}  // namespace Sources
