#pragma once
// How values that a process holds by reference are stored in a table record, which another process
// reads. An interface identifier is a pointer into its process's interned names, so a record holds
// the interface's name, zero-padded; an address of either version is its version and 16 octets.
#include "platform/pelt/IntfId.h"
#include "platform/pelt/IpGenAddr.h"

namespace Tarn {

// Room for an interface name in a record; longer names are refused when written.
inline constexpr std::size_t intfNameBytes = 24;

struct IntfNameField {
  char bytes[intfNameBytes];
};
// Raises Quor::RangeException for a name longer than intfNameBytes.
IntfNameField encodeIntfName(Pelt::IntfId id);
Pelt::IntfId decodeIntfName(const IntfNameField& field);

struct IpGenAddrField {
  U8 version;
  U8 pad[3];
  U8 octets[16];  // an IPv4 address in the first 4, the rest zero
};
IpGenAddrField encodeIpGenAddr(const Pelt::IpGenAddr& addr);
Pelt::IpGenAddr decodeIpGenAddr(const IpGenAddrField& field);

}  // namespace Tarn
