#include "model/IpAddressEntry.h"

#include <cstring>

namespace IpSnmp {

Pelt::IpAddr IpAddressEntry::ipAdEntAddr() const {
  U32 networkOrder = 0;
  std::memcpy(&networkOrder, key_.bytes.bytes(), std::min<std::size_t>(4, key_.bytes.size()));
  return Pelt::IpAddr::fromNetworkOrder(networkOrder);
}

U32 IpAddressEntry::ifIndex() const {
  const auto& master = intf_.begin()->second;
  return master ? master->ifIndex() : 0;
}

AddressStatus IpAddressEntry::addressStatus() const {
  return intf_.begin()->first.source == addressSourceConfig ? addressStatusInaccessible : addressStatusPreferred;
}

IntfData IpAddressEntry::intf(const IntfDataKey& key) const {
  auto it = intf_.find(key);
  return it == intf_.end() ? IntfData() : IntfData(it->first, it->second);
}

void IpAddressEntry::intfIs(const IntfData& data) { intf_[data.key] = data.prefixEntry; }

IntfData IpAddressEntry::intfDel(const IntfDataKey& key) {
  auto it = intf_.find(key);
  if (it == intf_.end()) return IntfData();
  IntfData removed(it->first, it->second);
  intf_.erase(it);
  return removed;
}

}  // namespace IpSnmp
