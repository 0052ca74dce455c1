#pragma once
// One reading of the kernel's IP counters of one IP version: 27 unsigned 64-bit attributes, zero
// by default. Every read overwrites what it finds with the kernel's absolute value; nothing
// accumulates, and attributes that a read does not find keep their last value.
#include <array>
#include <iosfwd>

#include "platform/quor/Strep.h"

namespace Ip {

// The attributes in their order, which is also the order of the textual form, as
// X(attribute, Capitalised). The first 25 are the ones that the kernel's IPv6 file names, each
// with a Counter (Counter.h); the broadcast pair is known to the IPv4 netstat file only.
#define IP_SW_FWD_STATS_NAMED_IN_SNMP6(X)                                                             \
  X(inReceives, InReceives)                                                                           \
  X(inOctets, InOctets)                                                                               \
  X(inHdrErrors, InHdrErrors)                                                                         \
  X(inAddrErrors, InAddrErrors)                                                                       \
  X(forwDatagrams, ForwDatagrams)                                                                     \
  X(inUnknownProtos, InUnknownProtos)                                                                 \
  X(inDiscards, InDiscards)                                                                           \
  X(inDelivers, InDelivers)                                                                           \
  X(outRequests, OutRequests)                                                                         \
  X(outDiscards, OutDiscards)                                                                         \
  X(outNoRoutes, OutNoRoutes)                                                                         \
  X(outOctets, OutOctets)                                                                             \
  X(reasmTimeout, ReasmTimeout)                                                                       \
  X(reasmReqds, ReasmReqds)                                                                           \
  X(reasmOKs, ReasmOKs)                                                                               \
  X(reasmFails, ReasmFails)                                                                           \
  X(fragOKs, FragOKs)                                                                                 \
  X(fragFails, FragFails)                                                                             \
  X(fragCreates, FragCreates)                                                                         \
  X(inNoRoutes, InNoRoutes)                                                                           \
  X(inTruncatedPkts, InTruncatedPkts)                                                                 \
  X(inMcastPkts, InMcastPkts)                                                                         \
  X(inMcastOctets, InMcastOctets)                                                                     \
  X(outMcastPkts, OutMcastPkts)                                                                       \
  X(outMcastOctets, OutMcastOctets)

#define IP_SW_FWD_STATS_ATTRIBUTES(X)                                                                 \
  IP_SW_FWD_STATS_NAMED_IN_SNMP6(X)                                                                   \
  X(inBcastPkts, InBcastPkts)                                                                         \
  X(outBcastPkts, OutBcastPkts)

class SwFwdStatsData {
 public:
  SwFwdStatsData() = default;
  // Parses the textual form; attributes that it leaves out are zero.
  SwFwdStatsData(Quor::StrepIterator& position, const Quor::StrepIterator& end);

#define IP_SW_FWD_STATS_DATA_ACCESSORS(attr, Attr)                                                    \
  U64 attr() const noexcept { return values_[attr##Index]; }                                          \
  void attr##Is(U64 value) noexcept { values_[attr##Index] = value; }
  IP_SW_FWD_STATS_ATTRIBUTES(IP_SW_FWD_STATS_DATA_ACCESSORS)
#undef IP_SW_FWD_STATS_DATA_ACCESSORS

  bool operator==(const SwFwdStatsData&) const = default;
  // True when every attribute is zero.
  bool operator!() const noexcept { return *this == SwFwdStatsData(); }

 private:
#define IP_SW_FWD_STATS_DATA_INDEX(attr, Attr) attr##Index,
  enum Index { IP_SW_FWD_STATS_ATTRIBUTES(IP_SW_FWD_STATS_DATA_INDEX) attributeCount };
#undef IP_SW_FWD_STATS_DATA_INDEX

  std::array<U64, attributeCount> values_{};
};

// "Value('Ip::SwFwdStatsData', ** {'inReceives': 1, 'inOctets': 2, ...})", all 27 in order.
Quor::String8 valueToStrep(const SwFwdStatsData& data);
std::ostream& operator<<(std::ostream& out, const SwFwdStatsData& data);

}  // namespace Ip
