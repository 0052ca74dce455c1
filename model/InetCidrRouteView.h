#pragma once
// inetCidrRouteTable as a VRF's forwarding table holds it: the IPv4 rows are those of ipCidrRouteTable,
// read in place under keys made as they are read, and the IPv6 rows follow from their own collection.
// No IPv4 row is kept twice. This rests on the two orders agreeing: for the rows that the route machine
// makes (type of service 0, masks of a prefix length), the order of IpCidrRouteTableIndex is that of
// InetCidrRouteIndex, the next hop 0.0.0.0 of a connected route, shown as none, coming first.
#include <cstddef>

#include "model/InetCidrRouteIndex.h"
#include "model/IpCidrRouteTableEntry.h"
#include "platform/quor/BlockMap.h"

namespace IpSnmp {

// The rows are values in sorted blocks (about 40 bytes an IPv4 row): a lookup's pointer holds until
// the table next changes, and an iterator reads its own copy of its row, which stays readable after
// the row is removed. The ordered walk (begin, startAt: the row of a key or the next above it,
// findNext: the next above a key) and the iterator's guarantees are those of the framework's
// collections.
using IpCidrRouteTable = Quor::BlockMap<IpCidrRouteTableEntry, IpCidrRouteTableIndex>;
using InetCidrRoute6Table = Quor::BlockMap<InetCidrRoute6Entry, InetCidrRoute6Index>;

// A row of either family: what the columns read.
class InetCidrRouteRow {
 public:
  explicit InetCidrRouteRow(const IpCidrRouteTableEntry& row) : ipv4_(&row) {}
  explicit InetCidrRouteRow(const InetCidrRoute6Entry& row) : ipv6_(&row) {}
  U32 ifIndex() const noexcept { return ipv4_ ? ipv4_->ifIndex() : ipv6_->ifIndex(); }
  Routing::RouteMetric metric() const noexcept { return ipv4_ ? ipv4_->metric() : ipv6_->metric(); }
  Routing::RoutePreference preference() const noexcept { return ipv4_ ? ipv4_->preference() : ipv6_->preference(); }
  Routing::Fib::RouteType protocol() const noexcept { return ipv4_ ? ipv4_->protocol() : ipv6_->protocol(); }

 private:
  const IpCidrRouteTableEntry* ipv4_ = nullptr;
  const InetCidrRoute6Entry* ipv6_ = nullptr;
};

class InetCidrRouteView {
 public:
  // The two collections' iterators one after the other, with their guarantees (CollectionIterator.h).
  class IteratorConst {
   public:
    using Key = InetCidrRouteIndex;
    IteratorConst() = default;
    IteratorConst(IpCidrRouteTable::IteratorConst ipv4, InetCidrRoute6Table::IteratorConst ipv6,
                  const InetCidrRoute6Table* ipv6Table)
        : ipv4_(std::move(ipv4)), ipv6_(std::move(ipv6)), ipv6Table_(ipv6Table) {}

    bool atEnd() const noexcept { return ipv4_.atEnd() && ipv6_.atEnd(); }
    explicit operator bool() const noexcept { return !atEnd(); }
    Key key() const { return ipv4_ ? Key::of(ipv4_.key()) : Key::of(ipv6_.key()); }
    InetCidrRouteRow operator*() const { return ipv4_ ? InetCidrRouteRow(*ipv4_) : InetCidrRouteRow(*ipv6_); }
    void advance() {
      if (!ipv4_) return ipv6_.advance();
      ipv4_.advance();
      if (!ipv4_) ipv6_ = ipv6Table_->begin();
    }

   private:
    IpCidrRouteTable::IteratorConst ipv4_;
    InetCidrRoute6Table::IteratorConst ipv6_;
    const InetCidrRoute6Table* ipv6Table_ = nullptr;
  };
  using Key = InetCidrRouteIndex;

  InetCidrRouteView(const IpCidrRouteTable& ipv4, const InetCidrRoute6Table& ipv6) : ipv4_(ipv4), ipv6_(ipv6) {}

  std::size_t members() const noexcept { return ipv4_.members() + ipv6_.members(); }
  IteratorConst begin() const { return chained(ipv4_.begin()); }
  // The row of `key`, else the first above it.
  IteratorConst startAt(const Key& key) const {
    if (key.destType == InetAddressType::ipv4) return chained(ipv4_.startAt(key.ipv4()));
    return {IpCidrRouteTable::IteratorConst(), ipv6_.startAt(key.ipv6()), &ipv6_};
  }

 private:
  IteratorConst chained(IpCidrRouteTable::IteratorConst ipv4) const {
    InetCidrRoute6Table::IteratorConst ipv6 = ipv4 ? InetCidrRoute6Table::IteratorConst() : ipv6_.begin();
    return {std::move(ipv4), std::move(ipv6), &ipv6_};
  }

  const IpCidrRouteTable& ipv4_;
  const InetCidrRoute6Table& ipv6_;
};

}  // namespace IpSnmp
