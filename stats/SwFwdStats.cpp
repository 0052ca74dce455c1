#include "stats/SwFwdStats.h"

#include <string>
#include <string_view>

#include "platform/pelt/Netns.h"
#include "platform/quor/Clock.h"

namespace Ip {

namespace {

// Reflection, numbered from 258; the last three are the callable operations.
constexpr std::string_view attributeNames[] = {
    "ipVersion", "vrfName", "data", "inReceives", "inOctets", "inHdrErrors", "inAddrErrors",
    "inForwDatagrams", "forwDatagrams", "inUnknownProtos", "inDiscards", "inDelivers", "outRequests",
    "outDiscards", "outNoRoutes", "outTransmits", "outOctets", "reasmTimeout", "reasmReqds", "reasmOKs",
    "reasmFails", "fragReqds", "fragOKs", "fragFails", "fragCreates", "inNoRoutes", "inTruncatedPkts",
    "inMcastPkts", "inMcastOctets", "outMcastPkts", "outMcastOctets", "inBcastPkts", "outBcastPkts",
    "lastUpdate", "doRead", "doFreshen", "setNs",
};

// Beyond this age the record is stale.
constexpr double freshness = 0.5;

}  // namespace

SwFwdStats::SwFwdStats(IpVersion ipVersion, Quor::Name vrfName)
    : Quor::Entity(Quor::Name()), ipVersion_(ipVersion), vrfName_(std::move(vrfName)) {}

Quor::Ptr<SwFwdStats> swFwdStatsFactory(IpVersion ipVersion, const Quor::Name& vrfName) {
  return Quor::Ptr<SwFwdStats>(new SwFwdStats(ipVersion, vrfName));
}

#define IP_SW_FWD_STATS_ACCESSOR(attr, Attr)                                                          \
  U64 SwFwdStats::attr() const {                                                                      \
    doFreshen();                                                                                      \
    return data_.attr();                                                                              \
  }
IP_SW_FWD_STATS_ATTRIBUTES(IP_SW_FWD_STATS_ACCESSOR)
#undef IP_SW_FWD_STATS_ACCESSOR

U64 SwFwdStats::inForwDatagrams() const {
  doFreshen();
  return data_.inNoRoutes() + data_.forwDatagrams();
}

U64 SwFwdStats::fragReqds() const {
  doFreshen();
  return data_.fragOKs() + data_.fragFails();
}

U64 SwFwdStats::outTransmits() const {
  doFreshen();
  return data_.forwDatagrams() + data_.outRequests() + data_.fragCreates() - data_.outNoRoutes() -
         data_.fragFails() - data_.fragOKs() - data_.outDiscards();
}

void SwFwdStats::doFreshen() const {
  if (Quor::now() - lastUpdate_ > freshness) doRead();
}

void SwFwdStats::setNs(const Quor::Name& name) const {
  const std::string ns = name == "default" ? name.str() : "ns-" + name.str();
  Pelt::setNsByName(ns.c_str());
}

Quor::String8 SwFwdStats::attributeString(Quor::AttributeId id) const { return attributeNameOf(attributeNames, id); }

Quor::AttributeId SwFwdStats::attributeId(const Quor::String8& name) const {
  return attributeIdOf(attributeNames, name);
}

}  // namespace Ip
