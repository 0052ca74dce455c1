#pragma once
// A NETLINK_ROUTE socket of one network namespace, through libmnl.
//
// The socket is opened inside the namespace (enter it, open, come back), after which it stays bound
// to that namespace whatever namespace the thread is in: the kernel ties a netlink socket to the
// namespace of its creation. It never blocks: reads give what is waiting and no more.
#include <sys/types.h>

#include <span>
#include <string>
#include <vector>

#include "platform/quor/Types.h"

struct mnl_socket;

namespace Sources::Linux {

class RtnlSocket {
 public:
  // Opens the socket in `netns`, a name under /var/run/netns, or in the process's own namespace for
  // the empty name, and joins the multicast `groups` (RTNLGRP_* numbers: those above 31, such as
  // RTNLGRP_NEXTHOP, have no bit of the old mask). Raises std::system_error.
  RtnlSocket(const std::string& netns, const std::vector<unsigned>& groups);
  ~RtnlSocket();
  RtnlSocket(const RtnlSocket&) = delete;
  RtnlSocket& operator=(const RtnlSocket&) = delete;

  int fd() const noexcept;
  // Asks for a dump of every object of `type` (RTM_GETLINK, RTM_GETNEXTHOP, ...) in `family`; gives
  // its sequence number. Raises std::system_error.
  U32 requestDump(U16 type, U8 family);
  // Reads one datagram: its length, 0 when nothing waits, -1 with errno set on a failure (ENOBUFS:
  // the kernel dropped messages because the socket's buffer was full).
  ssize_t receive(std::span<char> buffer);

 private:
  mnl_socket* socket_ = nullptr;
  U32 nextSeq_ = 1;
};

// Room for the largest datagram of a dump.
inline constexpr std::size_t rtnlBufferSize = 65536;

}  // namespace Sources::Linux
