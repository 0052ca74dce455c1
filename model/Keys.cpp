// Text forms of the table keys and their parsing constructors.
#include <ostream>

#include "model/ArpTableIndex.h"
#include "model/InetAddress.h"
#include "model/IntfData.h"
#include "model/IpAddressPrefixKey.h"
#include "model/IpCidrRouteTableIndex.h"

namespace IpSnmp {

namespace {

// Reads attribute `name` with `parse`, so that a failure names the attribute.
template <class A, class Parse>
void readAttr(Quor::StrepIterator& position, const Quor::StrepIterator& end, std::string_view name, A& attr,
              Parse parse) {
  try {
    attr = parse(position, end);
  } catch (const Quor::RangeException& failure) {
    Quor::rethrowFromDeserializeAttr(failure, name);
  }
}

// The platform values print as quoted text; these read them back.
Ip::IpVersion quotedVersion(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  return Ip::IpVersionInstance(Quor::readQuotedString(position, end));
}
Pelt::IpAddr quotedIpAddr(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  return Pelt::IpAddr(Quor::readQuotedString(position, end).view());
}
Pelt::IntfId quotedIntfId(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  return Pelt::IntfId(Quor::readQuotedString(position, end).view());
}
template <class A>
A plain(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  return Quor::valueFromStrep<A>(position, end);
}

}  // namespace

InetAddress InetAddress::fromIpAddr(Pelt::IpAddr addr) {
  U8 bytes[4];
  addr.copyToBuffer(bytes);
  return InetAddress(Ip::ipVersion4, Snmp::String(bytes, sizeof bytes));
}

InetAddress InetAddress::fromIp6Addr(const Pelt::Ip6Addr& addr) {
  U8 bytes[16];
  addr.copyToBuffer(bytes);
  return InetAddress(Ip::ipVersion6, Snmp::String(bytes, sizeof bytes));
}

InetAddress::InetAddress(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  Quor::readValueForm(position, end, "'IpSnmp::InetAddress'", "InetAddress", [&](const Quor::String8& name) {
    if (name == "version") readAttr(position, end, "version", version, quotedVersion);
    else if (name == "bytes") readAttr(position, end, "bytes", bytes, plain<Snmp::String>);
    else return false;
    return true;
  });
}

Quor::String8 valueToStrep(const InetAddress& key) {
  return Quor::valueFormStrep("IpSnmp::InetAddress",
                              {{"version", Ip::valueToStrep(key.version)}, {"bytes", Quor::valueToStrep(key.bytes)}});
}

IpAddressPrefixKey::IpAddressPrefixKey(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  Quor::readValueForm(position, end, "'IpSnmp::IpAddressPrefixKey'", "IpAddressPrefixKey", [&](const Quor::String8& name) {
    if (name == "ifIndex") readAttr(position, end, "ifIndex", ifIndex, plain<U32>);
    else if (name == "version") readAttr(position, end, "version", version, quotedVersion);
    else if (name == "bytes") readAttr(position, end, "bytes", bytes, plain<Snmp::String>);
    else if (name == "length") readAttr(position, end, "length", length, plain<U32>);
    else return false;
    return true;
  });
}

Quor::String8 valueToStrep(const IpAddressPrefixKey& key) {
  return Quor::valueFormStrep("IpSnmp::IpAddressPrefixKey", {{"ifIndex", Quor::valueToStrep(U64(key.ifIndex))},
                                                             {"version", Ip::valueToStrep(key.version)},
                                                             {"bytes", Quor::valueToStrep(key.bytes)},
                                                             {"length", Quor::valueToStrep(U64(key.length))}});
}

IntfDataKey::IntfDataKey(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  Quor::readValueForm(position, end, "'IpSnmp::IntfDataKey'", "IntfDataKey", [&](const Quor::String8& name) {
    if (name == "source") readAttr(position, end, "source", source, plain<AddressSource>);
    else if (name == "intfId") readAttr(position, end, "intfId", intfId, quotedIntfId);
    else return false;
    return true;
  });
}

Quor::String8 valueToStrep(const IntfDataKey& key) {
  return Quor::valueFormStrep("IpSnmp::IntfDataKey",
                              {{"source", valueToStrep(key.source)}, {"intfId", Pelt::valueToStrep(key.intfId)}});
}

// A prefix row is printed as a reference and cannot be read back: only its absence parses.
IntfData::IntfData(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  Quor::readValueForm(position, end, "'IpSnmp::IntfData'", "IntfData", [&](const Quor::String8& name) {
    if (name == "key") readAttr(position, end, "key", key, plain<IntfDataKey>);
    else if (name == "prefixEntry") readAttr(position, end, "prefixEntry", prefixEntry, [](auto& p, const auto& e) {
      Quor::needString(p, e, " None");
      return Quor::Ptr<const IpAddressPrefixEntry>();
    });
    else return false;
    return true;
  });
}

Quor::String8 valueToStrep(const IntfData& data) {
  return Quor::valueFormStrep("IpSnmp::IntfData", {{"key", valueToStrep(data.key)},
                                                   {"prefixEntry", Quor::valueToStrepOfRawPtr(data.prefixEntry.ptr())}});
}

ArpTableIndex::ArpTableIndex(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  Quor::readValueForm(position, end, "'IpSnmp::ArpTableIndex'", "ArpTableIndex", [&](const Quor::String8& name) {
    if (name == "ifIndex") readAttr(position, end, "ifIndex", ifIndex, plain<U32>);
    else if (name == "ipAddr") readAttr(position, end, "ipAddr", ipAddr, quotedIpAddr);
    else return false;
    return true;
  });
}

Quor::String8 valueToStrep(const ArpTableIndex& key) {
  return Quor::valueFormStrep("IpSnmp::ArpTableIndex",
                              {{"ifIndex", Quor::valueToStrep(U64(key.ifIndex))}, {"ipAddr", Pelt::valueToStrep(key.ipAddr)}});
}

IpCidrRouteTableIndex::IpCidrRouteTableIndex(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  Quor::readValueForm(position, end, "'IpSnmp::IpCidrRouteTableIndex'", "IpCidrRouteTableIndex",
                      [&](const Quor::String8& name) {
                        if (name == "dest") readAttr(position, end, "dest", dest, quotedIpAddr);
                        else if (name == "mask") readAttr(position, end, "mask", mask, quotedIpAddr);
                        else if (name == "tos") readAttr(position, end, "tos", tos, plain<U32>);
                        else if (name == "nextHop") readAttr(position, end, "nextHop", nextHop, quotedIpAddr);
                        else return false;
                        return true;
                      });
}

Quor::String8 valueToStrep(const IpCidrRouteTableIndex& key) {
  return Quor::valueFormStrep("IpSnmp::IpCidrRouteTableIndex", {{"dest", Pelt::valueToStrep(key.dest)},
                                                                {"mask", Pelt::valueToStrep(key.mask)},
                                                                {"tos", Quor::valueToStrep(U64(key.tos))},
                                                                {"nextHop", Pelt::valueToStrep(key.nextHop)}});
}

std::ostream& operator<<(std::ostream& out, const InetAddress& key) { return out << valueToStrep(key); }
std::ostream& operator<<(std::ostream& out, const IpAddressPrefixKey& key) { return out << valueToStrep(key); }
std::ostream& operator<<(std::ostream& out, const IntfDataKey& key) { return out << valueToStrep(key); }
std::ostream& operator<<(std::ostream& out, const IntfData& data) { return out << valueToStrep(data); }
std::ostream& operator<<(std::ostream& out, const ArpTableIndex& key) { return out << valueToStrep(key); }
std::ostream& operator<<(std::ostream& out, const IpCidrRouteTableIndex& key) { return out << valueToStrep(key); }

}  // namespace IpSnmp
