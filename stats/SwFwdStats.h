#pragma once
// The kernel's IP counters of one IP version in one VRF, as the statistics table serves them.
//
// A cache, not a store: nothing writes it but its own read. Every counter accessor first calls
// doFreshen, which re-reads the /proc/net files when the held record is more than 0.5 seconds old,
// so a request gets current numbers as a side effect and a walk of the whole table costs at most one
// read per row and half second. A failed read keeps the record and lastUpdate as they were, so the
// next accessor call tries again at once. The entity has no timer: without requests nothing is read.
#include "platform/pelt/IpVersion.h"
#include "platform/quor/Entity.h"
#include "platform/quor/HashMap.h"
#include "stats/SwFwdStatsData.h"

namespace Ip {

class SwFwdStats : public Quor::Entity, public Quor::HashLink {
 public:
  // Its key within a container's collection, and what selects the read.
  IpVersion ipVersion() const noexcept { return ipVersion_; }
  // "default" for the default VRF.
  const Quor::Name& vrfName() const noexcept { return vrfName_; }
  // The counters of the last committed read, as they are: zero until then.
  const SwFwdStatsData& data() const noexcept { return data_; }
  // When data was last committed, on the clock of Quor::now(); 0.0 until then.
  double lastUpdate() const noexcept { return lastUpdate_; }
  // How many reads of the kernel's files this entity has begun, failed ones included: the cost that
  // the freshness rule bounds, counted so that it can be watched.
  U64 reads() const noexcept { return reads_; }
  const IpVersion& fwkKey() const noexcept { return ipVersion_; }

  // The counters of the record, freshened first.
#define IP_SW_FWD_STATS_ACCESSOR(attr, Attr) U64 attr() const;
  IP_SW_FWD_STATS_ATTRIBUTES(IP_SW_FWD_STATS_ACCESSOR)
#undef IP_SW_FWD_STATS_ACCESSOR
  // Computed at each call from the freshened record and stored nowhere, in unsigned 64-bit
  // arithmetic that wraps. outTransmits wraps below zero when the kernel's counters disagree with
  // each other; it is deliberately not clamped.
  U64 inForwDatagrams() const;  // inNoRoutes + forwDatagrams
  U64 fragReqds() const;        // fragOKs + fragFails
  U64 outTransmits() const;     // forwDatagrams + outRequests + fragCreates
                                //   - outNoRoutes - fragFails - fragOKs - outDiscards

  // The cache behind a constant entity: a read replaces the record through these.
  void dataIs(const SwFwdStatsData& data) const { data_ = data; }
  void lastUpdateIs(const double& lastUpdate) const { lastUpdate_ = lastUpdate; }

  // Reads when the record is older than 0.5 seconds (at exactly 0.5 it is still fresh).
  void doFreshen() const;
  // One unconditional read of the kernel's files (SwFwdStatsRead.cpp).
  void doRead() const;
  // Enters the network namespace of VRF `name`: "ns-<name>", or the process's own for "default".
  // Whether the switch succeeds is not examined.
  void setNs(const Quor::Name& name) const;

  const char* fwkType() const override { return "Ip::SwFwdStats"; }
  Quor::String8 attributeString(Quor::AttributeId id) const override;
  Quor::AttributeId attributeId(const Quor::String8& name) const override;

 private:
  friend Quor::Ptr<SwFwdStats> swFwdStatsFactory(IpVersion ipVersion, const Quor::Name& vrfName);
  SwFwdStats(IpVersion ipVersion, Quor::Name vrfName);
  void readIpv4() const;
  void readIpv6() const;

  const IpVersion ipVersion_;
  const Quor::Name vrfName_;
  mutable SwFwdStatsData data_;
  mutable double lastUpdate_ = 0.0;
  mutable U64 reads_ = 0;
};

// A new entity with an empty entity name, a zero record and lastUpdate 0.0.
Quor::Ptr<SwFwdStats> swFwdStatsFactory(IpVersion ipVersion, const Quor::Name& vrfName);

}  // namespace Ip
