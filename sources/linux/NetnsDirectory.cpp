#include "sources/linux/NetnsDirectory.h"

#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/quor/Trace.h"

namespace Sources::Linux {

namespace {

const Quor::Tracer tracer("Linux", "NetnsDirectory");
constexpr std::string_view prefix = "ns-";
constexpr double retryPeriod = 0.1;
constexpr double retryFor = 10.0;

}  // namespace

L3::VrfName vrfOfNamespace(std::string_view netns) {
  if (!netns.starts_with(prefix)) return {};
  std::string_view vrf = netns.substr(prefix.size());
  if (vrf.empty() || vrf.size() > L3::VrfName::maxBytes || vrf == "default") return {};
  return L3::VrfName(vrf);
}

std::string namespaceOfVrf(const L3::VrfName& vrf) { return std::string(prefix) + vrf.stringValue().str(); }

// Checks the names that have appeared but could not be entered yet.
class NetnsDirectory::Retry final : public Quor::Clock::NotifieeConst {
 public:
  explicit Retry(NetnsDirectory* owner) : owner_(owner) { notifierIs(Quor::activityManager()->clock()); }
  void onTime() override { owner_->checkPending(); }

 private:
  NetnsDirectory* owner_;
};

NetnsDirectory::NetnsDirectory(std::string dir, Change changed) : dir_(std::move(dir)), changed_(std::move(changed)) {
  std::error_code ignored;
  std::filesystem::create_directories(dir_, ignored);
  fd_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (fd_ < 0) throw std::system_error(errno, std::generic_category(), "inotify_init1");
  if (::inotify_add_watch(fd_, dir_.c_str(), IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO) < 0) {
    std::system_error failure(errno, std::generic_category(), "cannot watch " + dir_);
    ::close(fd_);
    throw failure;
  }
  retry_ = Quor::makePtr<Retry>(this);
  for (const auto& entry : std::filesystem::directory_iterator(dir_, ignored)) {
    std::string name = entry.path().filename().string();
    L3::VrfName vrf = vrfOfNamespace(name);
    if (vrf.empty()) continue;
    if (enterable(name))
      vrfs_.insert(vrf);
    else
      pending_[name] = Quor::now() + retryFor;
  }
  if (!pending_.empty()) retry_->timeMinIs(Quor::now() + retryPeriod);
  Quor::activityManager()->fdReadIs(fd_, [this] { onReadable(); });
}

NetnsDirectory::~NetnsDirectory() {
  Quor::activityManager()->fdReadDel(fd_);
  ::close(fd_);
  retry_->notifierIs(nullptr);
}

void NetnsDirectory::onReadable() {
  alignas(inotify_event) char buffer[4096];
  for (ssize_t n; (n = ::read(fd_, buffer, sizeof buffer)) > 0;) {
    for (ssize_t at = 0; at < n;) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
      at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      if (!event->len) continue;
      if (event->mask & (IN_CREATE | IN_MOVED_TO)) appeared(event->name);
      if (event->mask & (IN_DELETE | IN_MOVED_FROM)) gone(event->name);
    }
  }
}

void NetnsDirectory::appeared(const std::string& name) {
  if (vrfOfNamespace(name).empty()) return;
  pending_[name] = Quor::now() + retryFor;
  checkPending();
}

void NetnsDirectory::gone(const std::string& name) {
  L3::VrfName vrf = vrfOfNamespace(name);
  if (vrf.empty()) return;
  pending_.erase(name);
  if (vrfs_.erase(vrf)) changed_(vrf, false);
}

void NetnsDirectory::checkPending() {
  const double now = Quor::now();
  for (auto it = pending_.begin(); it != pending_.end();) {
    const std::string name = it->first;
    if (enterable(name)) {
      it = pending_.erase(it);
      L3::VrfName vrf = vrfOfNamespace(name);
      if (vrfs_.insert(vrf).second) changed_(vrf, true);
    } else if (now >= it->second) {
      QTRACE(tracer, 1, dir_ << "/" << name << " never became a network namespace");
      it = pending_.erase(it);
    } else {
      ++it;
    }
  }
  if (!pending_.empty()) retry_->timeMinIs(now + retryPeriod);
}

bool NetnsDirectory::enterable(const std::string& name) const {
  struct statfs fs {};
  return ::statfs((dir_ + "/" + name).c_str(), &fs) == 0 && static_cast<unsigned long>(fs.f_type) == NSFS_MAGIC;
}

}  // namespace Sources::Linux
