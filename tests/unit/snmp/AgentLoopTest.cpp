// The framework's timers and descriptors run inside snmpd's select loop: a slice of work asked for
// "at the next opportunity" runs once per pass of the loop, after the pass's requests, and
// deadlines are kept to the microsecond, neither early nor a tick late.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "platform/quor/Clock.h"
#include "platform/snmp/AgentLoop.h"
#include "platform/snmp/NetSnmp.h"

#include <net-snmp/library/large_fd_set.h>

namespace {

// A pipe whose every byte is one event: a request on the agent's socket, or what a descriptor of the
// framework's waits for.
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

// One pass of snmpd's receive() loop (agent/snmpd.c, net-snmp 5.9): select on the agent's
// descriptors until its next alarm, dispatch the ready external descriptors, read the requests on
// the agent's socket (`requests`, as snmp_read2 does), then run_alarms(). `maxWait` stands in for
// the sockets that would end an idle select.
void agentLoopPass(double maxWait, Pipe* requests = nullptr) {
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
  if (requests) {
    NETSNMP_LARGE_FD_SET(requests->readEnd(), &readfds);
    numfds = std::max(numfds, requests->readEnd() + 1);
  }
  int count = netsnmp_large_fd_set_select(numfds, &readfds, &writefds, &exceptfds, &timeout);
  if (count > 0) {
    netsnmp_dispatch_external_events2(&count, &readfds, &writefds, &exceptfds);
    if (requests && NETSNMP_LARGE_FD_ISSET(requests->readEnd(), &readfds)) requests->take();
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
    if (requests) requestsServed = requests->taken;
    if (fired < limit) timeMinIs(rearmAt);
  }
  int fired = 0;
  int limit = 1;
  double rearmAt = 0.0;
  double firedAt = 0.0;
  const Pipe* requests = nullptr;
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
  Pipe requests;  // as the agent's socket
  Pipe events;    // a descriptor of the framework's
  int requestsBeforeEvent = 0;
  Quor::activityManager()->fdReadIs(events.readEnd(), [&] {
    events.take();
    requestsBeforeEvent = requests.taken;
  });
  loop = std::make_unique<Snmp::AgentLoop>(Quor::activityManager());
  auto slicer = newSlicer();
  slicer->limit = 1000;
  slicer->timeMinIs(0.0);
  slicer->requests = &requests;
  for (int pass = 1; pass <= 5; ++pass) {
    requests.put();
    events.put();
    agentLoopPass(1.0, &requests);
    EXPECT_EQ(requests.taken, pass);
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
