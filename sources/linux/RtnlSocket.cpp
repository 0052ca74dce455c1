#include "sources/linux/RtnlSocket.h"

#include <libmnl/libmnl.h>
#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

#include "platform/pelt/Netns.h"

namespace Sources::Linux {

namespace {

// Events of a busy kernel (a routing daemon installing a full table) arrive faster than a dump is
// read; a large buffer makes an overrun, and the resynchronisation it costs, rare.
constexpr int receiveBufferBytes = 32 << 20;

std::system_error failure(const std::string& what) { return std::system_error(errno, std::generic_category(), what); }

mnl_socket* openHere(const std::vector<unsigned>& groups) {
  mnl_socket* socket = mnl_socket_open2(NETLINK_ROUTE, SOCK_NONBLOCK | SOCK_CLOEXEC);
  if (!socket) throw failure("netlink socket");
  int fd = mnl_socket_get_fd(socket);
  // Forcing the size needs CAP_NET_ADMIN; without it the kernel's limit for SO_RCVBUF applies.
  if (::setsockopt(fd, SOL_SOCKET, SO_RCVBUFFORCE, &receiveBufferBytes, sizeof receiveBufferBytes) != 0)
    ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &receiveBufferBytes, sizeof receiveBufferBytes);
  if (mnl_socket_bind(socket, 0, MNL_SOCKET_AUTOPID) < 0) {
    std::system_error bindFailure = failure("netlink bind");
    mnl_socket_close(socket);
    throw bindFailure;
  }
  for (unsigned group : groups)
    if (mnl_socket_setsockopt(socket, NETLINK_ADD_MEMBERSHIP, &group, sizeof group) < 0) {
      std::system_error joinFailure = failure("netlink group " + std::to_string(group));
      mnl_socket_close(socket);
      throw joinFailure;
    }
  return socket;
}

}  // namespace

RtnlSocket::RtnlSocket(const std::string& netns, const std::vector<unsigned>& groups) {
  if (netns.empty()) {
    socket_ = openHere(groups);
    return;
  }
  if (!Pelt::setNsByName(netns.c_str())) throw std::system_error(ENOENT, std::generic_category(), "enter " + netns);
  try {
    socket_ = openHere(groups);
  } catch (...) {
    Pelt::setNsByName("default");
    throw;
  }
  Pelt::setNsByName("default");
}

RtnlSocket::~RtnlSocket() { mnl_socket_close(socket_); }

int RtnlSocket::fd() const noexcept { return mnl_socket_get_fd(socket_); }

U32 RtnlSocket::requestDump(U16 type, U8 family) {
  alignas(nlmsghdr) char buffer[256];
  nlmsghdr* header = mnl_nlmsg_put_header(buffer);
  header->nlmsg_type = type;
  header->nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  header->nlmsg_seq = nextSeq_++;
  // Every dump request of rtnetlink starts with a struct whose first byte is the family. Most
  // families' handlers take the size of ifinfomsg, as ip(8) sends; the nexthop handler checks its
  // request strictly and refuses any byte beyond its own header.
  const std::size_t headerSize = type == RTM_GETNEXTHOP ? sizeof(nhmsg) : sizeof(ifinfomsg);
  auto* generic = static_cast<rtgenmsg*>(mnl_nlmsg_put_extra_header(header, headerSize));
  generic->rtgen_family = family;
  if (mnl_socket_sendto(socket_, header, header->nlmsg_len) < 0) throw failure("netlink dump request");
  return header->nlmsg_seq;
}

ssize_t RtnlSocket::receive(std::span<char> buffer) {
  ssize_t n = mnl_socket_recvfrom(socket_, buffer.data(), buffer.size());
  if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return 0;
  return n;
}

}  // namespace Sources::Linux
