#include "model/ArpTableEntry.h"

namespace IpSnmp {

Arp::ArpEntryStatus ArpTableEntry::arpEntry() const {
  Arp::Table::ArpKey key{arpTarnVrfId_, intfId_, Pelt::IpGenAddr(index_.ipAddr)};
  try {
    return Arp::ArpEntryStatus(arpTarn_->arpEntry().lookup(key).value());
  } catch (const Tarn::CorruptionDetectedException& e) {
    arpTarn_->arpEntry().corruptionDetected(e.text());
    return Arp::ArpEntryStatus(Arp::Table::ArpEntry());
  }
}

}  // namespace IpSnmp
