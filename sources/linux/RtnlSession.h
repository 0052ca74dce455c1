#pragma once
// Keeps a picture of one namespace's kernel objects in step: subscribe to the events, dump what is
// there, then follow the events, on one socket.
//
// The socket joins its multicast groups before the first dump, so nothing that happens during a
// dump is missed; events and dump replies are handed over in the order they arrive, which is the
// order the kernel produced them, so applying them in turn gives the kernel's state. Two things
// force a resynchronisation, which tells the handler to forget what it knows and dumps everything
// again: the kernel reports that a dump was interrupted by changes (NLM_F_DUMP_INTR), or the socket
// overran and events were lost (ENOBUFS). A resynchronisation asked for during a dump starts when
// that dump has finished, because a socket runs one dump at a time. A dump that the kernel refuses
// is asked for again, unless the kernel does not know the kind of object at all (EOPNOTSUPP), when
// it counts as an empty one.
#include <linux/netlink.h>

#include <memory>
#include <string>
#include <vector>

#include "sources/linux/RtnlSocket.h"

namespace Sources::Linux {

class RtnlSession {
 public:
  class Handler {
   public:
    virtual ~Handler() = default;
    // Everything known is about to be dumped anew: forget it.
    virtual void resyncBegins() = 0;
    // One object as a dump or an event carries it.
    virtual void message(const nlmsghdr& message) = 0;
    // The dumps of a (re)synchronisation are all in.
    virtual void dumpsDone() = 0;
  };
  struct Dump {
    U16 type;   // RTM_GETLINK, ...
    U8 family;  // AF_UNSPEC, AF_INET, ...
  };

  // Opens the socket (see RtnlSocket) and asks for the first dump. Raises std::system_error.
  RtnlSession(const std::string& netns, const std::vector<unsigned>& groups, std::vector<Dump> dumps,
              Handler& handler);

  int fd() const noexcept { return socket_.fd(); }
  // Handles what waits on the socket, for about `budget` seconds at most; true when it stopped with
  // messages still waiting. Raises std::system_error when the socket fails for good.
  bool readSome(double budget);
  // Whether the dumps of the first synchronisation are all in.
  bool synchronised() const noexcept { return synchronised_; }
  // Whether a dump is under way: what the handler knows is then incomplete.
  bool dumping() const noexcept { return step_ < dumps_.size(); }
  // Resynchronisations so far, the first excepted.
  U32 resyncs() const noexcept { return resyncs_; }

 private:
  void handleDatagram(const char* data, std::size_t length);
  void startResync();
  void requestStep();
  void stepDone();

  RtnlSocket socket_;
  std::vector<Dump> dumps_;
  Handler& handler_;
  std::unique_ptr<char[]> buffer_;
  std::size_t step_ = 0;      // the dump under way, dumps_.size() when none
  U32 dumpSeq_ = 0;           // its sequence number
  bool interrupted_ = false;  // the dump under way was interrupted
  bool resyncWanted_ = false;
  bool synchronised_ = false;
  U32 resyncs_ = 0;
};

}  // namespace Sources::Linux
