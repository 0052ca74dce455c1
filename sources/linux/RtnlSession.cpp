#include "sources/linux/RtnlSession.h"

#include <libmnl/libmnl.h>

#include <cerrno>
#include <system_error>

#include "platform/quor/Clock.h"
#include "platform/quor/Trace.h"

namespace Sources::Linux {

namespace {

const Quor::Tracer tracer("Linux", "RtnlSession");

}  // namespace

RtnlSession::RtnlSession(const std::string& netns, const std::vector<unsigned>& groups, std::vector<Dump> dumps,
                         Handler& handler)
    : socket_(netns, groups), dumps_(std::move(dumps)), handler_(handler),
      buffer_(std::make_unique<char[]>(rtnlBufferSize)) {
  startResync();
}

bool RtnlSession::readSome(double budget) {
  const double deadline = Quor::now() + budget;
  while (true) {
    ssize_t n = socket_.receive({buffer_.get(), rtnlBufferSize});
    if (n == 0) return false;
    if (n < 0) {
      if (errno == EINTR) continue;
      if (errno != ENOBUFS) throw std::system_error(errno, std::generic_category(), "netlink receive");
      QTRACE(tracer, 1, "netlink socket overran, events were lost: resynchronising");
      resyncWanted_ = true;
      if (step_ == dumps_.size()) startResync();
      continue;
    }
    handleDatagram(buffer_.get(), static_cast<std::size_t>(n));
    if (Quor::now() >= deadline) return true;
  }
}

void RtnlSession::handleDatagram(const char* data, std::size_t length) {
  int left = static_cast<int>(length);
  for (auto* message = reinterpret_cast<const nlmsghdr*>(data); mnl_nlmsg_ok(message, left);
       message = mnl_nlmsg_next(message, &left)) {
    const bool ofDump = step_ < dumps_.size() && message->nlmsg_seq == dumpSeq_;
    if (message->nlmsg_type == NLMSG_DONE) {
      if (ofDump) stepDone();
      continue;
    }
    if (message->nlmsg_type == NLMSG_ERROR) {
      if (!ofDump) continue;
      const auto* error = static_cast<const nlmsgerr*>(mnl_nlmsg_get_payload(message));
      if (error->error == -EOPNOTSUPP) {
        // A kernel without this kind of object (nexthop objects came with Linux 5.3): nothing to dump.
        QTRACE(tracer, 1, "dump " << dumps_[step_].type << " not supported by this kernel: skipped");
        stepDone();
        continue;
      }
      QTRACE(tracer, 1, "dump " << dumps_[step_].type << " refused (" << -error->error << "): asking again");
      requestStep();
      continue;
    }
    if (message->nlmsg_type < NLMSG_MIN_TYPE) continue;
    if (ofDump && (message->nlmsg_flags & NLM_F_DUMP_INTR)) interrupted_ = true;
    handler_.message(*message);
  }
}

void RtnlSession::startResync() {
  if (synchronised_) ++resyncs_;
  resyncWanted_ = false;
  handler_.resyncBegins();
  step_ = 0;
  requestStep();
}

void RtnlSession::requestStep() {
  interrupted_ = false;
  dumpSeq_ = socket_.requestDump(dumps_[step_].type, dumps_[step_].family);
}

void RtnlSession::stepDone() {
  if (interrupted_) {
    QTRACE(tracer, 1, "dump " << dumps_[step_].type << " interrupted by changes: resynchronising");
    resyncWanted_ = true;
  }
  if (++step_ < dumps_.size()) {
    requestStep();
    return;
  }
  if (resyncWanted_) {
    startResync();
    return;
  }
  synchronised_ = true;
  handler_.dumpsDone();
}

}  // namespace Sources::Linux
