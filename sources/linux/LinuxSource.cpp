#include "sources/linux/LinuxSource.h"

#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

#include "platform/quor/Trace.h"
#include "sources/linux/Forwarding.h"
#include "sources/linux/NamespaceLinks.h"
#include "sources/linux/NetnsDirectory.h"
#include "sources/linux/RtnlSession.h"
#include "sources/linux/StoreImage.h"
#include "sources/linux/WriterProcess.h"
#include "sources/scenario/ScenarioApply.h"

namespace Sources {

namespace {

const Quor::Tracer tracer("Linux", "LinuxSource");

const std::vector<unsigned> linkGroups{RTNLGRP_LINK, RTNLGRP_IPV4_IFADDR, RTNLGRP_IPV6_IFADDR};

}  // namespace

// One namespace: its socket, what the kernel holds there, and the image last taken of it.
struct LinuxSource::Namespace {
  L3::VrfName vrf;
  std::string netns;  // empty for the process's own
  Linux::NamespaceLinks links;
  std::unique_ptr<Linux::RtnlSession> session;
  Linux::Forwarding forwarding;
  std::optional<U64> nsInode;
  Scenario image;  // what the store holds of it; kept while a dump is under way
  bool frozen = false;  // its socket failed: the image stays as it is
};

class LinuxSource::Publish final : public Quor::Clock::NotifieeConst {
 public:
  explicit Publish(LinuxSource* owner) : owner_(owner) { notifierIs(Quor::activityManager()->clock()); }
  void onTime() override { owner_->publish(); }

 private:
  LinuxSource* owner_;
};

class LinuxSource::ForwardingClock final : public Quor::Clock::NotifieeConst {
 public:
  explicit ForwardingClock(LinuxSource* owner) : owner_(owner) { notifierIs(Quor::activityManager()->clock()); }
  void onTime() override {
    owner_->readForwarding();
    timeMinIs(Quor::now() + owner_->options_.forwardingPeriod);
  }

 private:
  LinuxSource* owner_;
};

LinuxSource::LinuxSource(Morvane::Store store, Options options)
    : store_(std::move(store)), options_(std::move(options)) {}

LinuxSource::~LinuxSource() { stop(); }

void LinuxSource::stop() {
  if (publish_) publish_->notifierIs(nullptr);
  if (forwardingClock_) forwardingClock_->notifierIs(nullptr);
  publish_ = nullptr;
  forwardingClock_ = nullptr;
  netnsDirectory_.reset();
  while (!namespaces_.empty()) closeNamespace(namespaces_.begin()->first);
  writer_.reset();
}

std::string LinuxSource::start() {
  try {
    publish_ = Quor::makePtr<Publish>(this);
    forwardingClock_ = Quor::makePtr<ForwardingClock>(this);
    netnsDirectory_ = std::make_unique<Linux::NetnsDirectory>(
        options_.netnsDir, [this](const L3::VrfName& vrf, bool present) {
          if (present)
            openNamespace(vrf);
          else
            closeNamespace(vrf);
          publishSoon();
        });
    openNamespace(L3::VrfName("default"));
    for (const L3::VrfName& vrf : netnsDirectory_->vrfs()) openNamespace(vrf);
    if (!namespaces_.count(L3::VrfName("default"))) throw std::runtime_error("cannot follow this namespace's links");
    if (!options_.tableWriter.empty())
      writer_ = std::make_unique<Linux::WriterProcess>(
          options_.tableWriter, std::vector<std::string>{"--parent", std::to_string(::getpid())});
    forwardingClock_->timeMinIs(Quor::now() + options_.forwardingPeriod);
  } catch (const std::exception& e) {
    stop();
    return e.what();
  }
  return "";
}

int LinuxSource::tableWriterPid() const { return writer_ ? writer_->pid() : 0; }

void LinuxSource::openNamespace(const L3::VrfName& vrf) {
  auto ns = std::make_unique<Namespace>();
  ns->vrf = vrf;
  if (!vrf.isDefault()) {
    ns->netns = Linux::namespaceOfVrf(vrf);
    struct stat st {};
    if (::stat((options_.netnsDir + "/" + ns->netns).c_str(), &st) == 0) ns->nsInode = st.st_ino;
  }
  try {
    ns->session = std::make_unique<Linux::RtnlSession>(
        ns->netns, linkGroups,
        std::vector<Linux::RtnlSession::Dump>{{RTM_GETLINK, AF_UNSPEC}, {RTM_GETADDR, AF_UNSPEC}}, ns->links);
  } catch (const std::system_error& e) {
    QTRACE(tracer, 0, "cannot follow the links of VRF " << vrf << ": " << e.what());
    return;
  }
  ns->forwarding = Linux::readForwarding(ns->netns).value_or(Linux::Forwarding());
  Namespace* raw = ns.get();
  Quor::activityManager()->fdReadIs(ns->session->fd(), [this, raw] { onReadable(*raw); });
  namespaces_[vrf] = std::move(ns);
  QTRACE(tracer, 1, "following VRF " << vrf);
}

void LinuxSource::closeNamespace(const L3::VrfName& vrf) {
  auto it = namespaces_.find(vrf);
  if (it == namespaces_.end()) return;
  if (it->second->session) Quor::activityManager()->fdReadDel(it->second->session->fd());
  namespaces_.erase(it);
  QTRACE(tracer, 1, "VRF " << vrf << " is gone");
}

void LinuxSource::onReadable(Namespace& ns) {
  try {
    ns.session->readSome(options_.readQuantum);
  } catch (const std::system_error& e) {
    // The namespace keeps its last image in the store; nothing more is read from it.
    QTRACE(tracer, 0, "netlink of VRF " << ns.vrf << " failed, its state is frozen: " << e.what());
    Quor::activityManager()->fdReadDel(ns.session->fd());
    ns.frozen = true;
    return;
  }
  if (ns.links.takeChanged()) publishSoon();
}

void LinuxSource::readForwarding() {
  bool changed = false;
  for (auto& [vrf, ns] : namespaces_) {
    auto now = Linux::readForwarding(ns->netns);
    if (now && *now != ns->forwarding) {
      ns->forwarding = *now;
      changed = true;
    }
  }
  if (changed) publishSoon();
}

void LinuxSource::publishSoon() {
  if (publish_->timeMin() > Quor::now()) publish_->timeMinIs(0.0);
}

void LinuxSource::publish() {
  const double began = Quor::now();
  bool complete = true;
  Scenario image;
  for (auto& [vrf, ns] : namespaces_) {
    if (ns->frozen) {
      // published as it was
    } else if (ns->session->synchronised() && !ns->session->dumping()) {
      ns->image = Scenario();
      Linux::addNamespace(ns->image, {ns->vrf, ns->links, ns->forwarding, ns->nsInode});
    } else if (!ns->session->synchronised()) {
      complete = false;
    }
    if (vrf.isDefault()) image.routing = ns->image.routing;
    image.vrfs.insert(ns->image.vrfs.begin(), ns->image.vrfs.end());
    image.interfaces.insert(ns->image.interfaces.begin(), ns->image.interfaces.end());
  }
  initialized_ = initialized_ || complete;
  if (initialized_) image.snmp.initialized = true;
  applyScenario(image, store_);
  QTRACE(tracer, 2, "store in line with " << namespaces_.size() << " namespaces, " << image.interfaces.size()
                                          << " interfaces, in " << (Quor::now() - began) * 1e3 << " ms");
}

}  // namespace Sources
