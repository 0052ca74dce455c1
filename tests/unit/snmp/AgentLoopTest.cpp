// The framework's timers and descriptors run inside snmpd's select loop: a slice of work asked for
// "at the next opportunity" runs once per pass of the loop, after the pass's requests and behind
// queued ones, and deadlines are kept to the microsecond, neither early nor a tick late.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>

#include "platform/quor/Clock.h"
#include "platform/snmp/AgentLoop.h"
#include "platform/snmp/NetSnmp.h"

#include <net-snmp/library/large_fd_set.h>

namespace {

// A pipe whose every byte is one event that a descriptor of the framework's waits for.
class Pipe {
 public:
  Pipe() { EXPECT_EQ(::pipe(fds_), 0); }
  ~Pipe() {
    ::close(fds_[0]);
    ::close(fds_[1]);
  }
  int readEnd() const { return fds_[0]; }
  void put() { EXPECT_EQ(::write(fds_[1], "x", 1), 1); }
  void take() {
    char byte;
    EXPECT_EQ(::read(fds_[0], &byte, 1), 1);
    ++taken;
  }
  int taken = 0;

 private:
  int fds_[2];
};

// The agent's socket as snmpd has it: a session on a loopback UDP port. snmp_read2 takes one datagram
// a pass (counted here), which the library then drops as no SNMP message.
class RequestSocket {
 public:
  RequestSocket() {
    taken = 0;
    netsnmp_transport* transport = netsnmp_transport_open_server("AgentLoopTest", "udp:127.0.0.1:0");
    transport->f_recv = [](netsnmp_transport* t, void* buffer, int size, void** opaque, int* opaqueLength) {
      ++taken;
      *opaque = nullptr;
      *opaqueLength = 0;
      return static_cast<int>(::recv(t->sock, buffer, static_cast<size_t>(size), 0));
    };
    sockaddr_in address{};
    socklen_t length = sizeof address;
    ::getsockname(transport->sock, reinterpret_cast<sockaddr*>(&address), &length);
    netsnmp_session setup;
    snmp_sess_init(&setup);
    session_ = snmp_add(&setup, transport, nullptr, nullptr);
    EXPECT_EQ(::connect(sender_, reinterpret_cast<sockaddr*>(&address), length), 0);
  }
  ~RequestSocket() {
    snmp_close(session_);
    ::close(sender_);
  }
  void put() { EXPECT_EQ(::send(sender_, "x", 1, 0), 1); }
  static inline int taken = 0;

 private:
  netsnmp_session* session_;
  int sender_ = ::socket(AF_INET, SOCK_DGRAM, 0);
};

// One pass of snmpd's receive() loop (agent/snmpd.c, net-snmp 5.9): select on the agent's
// descriptors until its next alarm, dispatch the ready external descriptors, read a request of each
// session (snmp_read2), then run_alarms(). `maxWait` stands in for the sockets that would end an
// idle select.
void agentLoopPass(double maxWait) {
  netsnmp_large_fd_set readfds, writefds, exceptfds;
  netsnmp_large_fd_set_init(&readfds, FD_SETSIZE);
  netsnmp_large_fd_set_init(&writefds, FD_SETSIZE);
  netsnmp_large_fd_set_init(&exceptfds, FD_SETSIZE);
  const auto whole = static_cast<long>(maxWait);
  struct timeval longest = {whole, static_cast<long>((maxWait - whole) * 1e6)};
  struct timeval timeout = longest;
  int numfds = 0;
  int block = 0;
  snmp_select_info2(&numfds, &readfds, &timeout, &block);
  if (block || timercmp(&longest, &timeout, <)) timeout = longest;
  netsnmp_external_event_info2(&numfds, &readfds, &writefds, &exceptfds);
  int count = netsnmp_large_fd_set_select(numfds, &readfds, &writefds, &exceptfds, &timeout);
  if (count > 0) {
    netsnmp_dispatch_external_events2(&count, &readfds, &writefds, &exceptfds);
    snmp_read2(&readfds);
  }
  run_alarms();
  netsnmp_large_fd_set_cleanup(&readfds);
  netsnmp_large_fd_set_cleanup(&writefds);
  netsnmp_large_fd_set_cleanup(&exceptfds);
}

// A reactor that cuts its work into slices: each onTime asks for the next opportunity again, up to a
// limit, so that a loop that would run it without end stops and the test can say so.
class Slicer : public Quor::Clock::NotifieeConst {
 public:
  void onTime() override {
    ++fired;
    firedAt = Quor::now();
    requestsServed = RequestSocket::taken;
    if (fired < limit) timeMinIs(rearmAt);
  }
  int fired = 0;
  int limit = 1;
  double rearmAt = 0.0;
  double firedAt = 0.0;
  int requestsServed = 0;  // when it last fired
};

class AgentLoopTest : public ::testing::Test {
 protected:
  Quor::Ptr<Slicer> newSlicer() {
    auto slicer = Quor::makePtr<Slicer>();
    slicer->notifierIs(Quor::activityManager()->clock());
    return slicer;
  }
  std::unique_ptr<Snmp::AgentLoop> loop = std::make_unique<Snmp::AgentLoop>(Quor::activityManager());
};

// The framework's work of a pass (a slice, a ready descriptor) runs after the requests of the pass. A
// descriptor watched before the loop took the framework over is watched from then, until removed.
TEST_F(AgentLoopTest, SlicesAndDescriptorsRunOncePerPassAfterThePassRequests) {
  loop.reset();
  RequestSocket requests;
  Pipe events;  // a descriptor of the framework's
  int requestsBeforeEvent = 0;
  Quor::activityManager()->fdReadIs(events.readEnd(), [&] {
    events.take();
    requestsBeforeEvent = RequestSocket::taken;
  });
  loop = std::make_unique<Snmp::AgentLoop>(Quor::activityManager());
  auto slicer = newSlicer();
  slicer->limit = 1000;
  slicer->timeMinIs(0.0);
  for (int pass = 1; pass <= 5; ++pass) {
    requests.put();
    events.put();
    agentLoopPass(1.0);
    EXPECT_EQ(RequestSocket::taken, pass);
    EXPECT_EQ(slicer->fired, pass);
    EXPECT_EQ(slicer->requestsServed, pass);
    EXPECT_EQ(events.taken, pass);
    EXPECT_EQ(requestsBeforeEvent, pass);
  }
  Quor::activityManager()->fdReadDel(events.readEnd());
  events.put();
  agentLoopPass(0.05);
  EXPECT_EQ(events.taken, 5);
}

// Requests queued on the agent's session are each read in a pass of their own: the work due meanwhile
// waits until they are all read, but under a stream of requests for so many passes at most.
TEST_F(AgentLoopTest, WorkWaitsForQueuedRequestsForSoManyPassesAtMost) {
  RequestSocket requests;
  auto slicer = newSlicer();
  slicer->limit = 1000;
  slicer->timeMinIs(0.0);
  for (int i = 0; i < 3; ++i) requests.put();
  while (slicer->fired == 0) agentLoopPass(1.0);
  EXPECT_EQ(RequestSocket::taken, 3);

  int passes = 0;
  for (; slicer->fired == 1 && passes < 10 * Snmp::AgentLoop::maxPutOff; ++passes) {
    requests.put();
    requests.put();
    agentLoopPass(1.0);
  }
  EXPECT_EQ(slicer->fired, 2);
  EXPECT_EQ(passes, Snmp::AgentLoop::maxPutOff + 1);
}

TEST_F(AgentLoopTest, ADeadlineFiresOnTimeAndNotBeforeAndAnEarlierOneReplacesIt) {
  auto slicer = newSlicer();
  slicer->timeMinIs(Quor::now() + 60.0);
  const double deadline = Quor::now() + 0.03;
  slicer->timeMinIs(deadline);
  for (int pass = 0; pass < 20 && slicer->fired == 0; ++pass) agentLoopPass(5.0);
  ASSERT_EQ(slicer->fired, 1);
  EXPECT_GE(slicer->firedAt, deadline);
  EXPECT_LT(slicer->firedAt, deadline + 0.25);
}

}  // namespace
