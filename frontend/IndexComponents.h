#pragma once
// The kinds of index component that a table's hint reads: the ASN type that the varbind must have,
// and the reverse conversion of its value. A conversion may raise Quor::RangeException.
#include <string>

#include "frontend/Conversions.h"
#include "frontend/ElementaryConversions.h"
#include "platform/quor/Exception.h"
#include "platform/snmp/NetSnmp.h"

struct IntegerComponent {
  using Value = int;
  static constexpr u_char type = ASN_INTEGER;
  static Value parse(netsnmp_variable_list& var) { return AsnIntegerToS32(var.val.integer); }
};

struct IpVersionComponent {
  using Value = Ip::IpVersion;
  static constexpr u_char type = ASN_INTEGER;
  static Value parse(netsnmp_variable_list& var) { return AsnIntegerToIpVersion(var.val.integer); }
};

struct UnsignedComponent {
  using Value = unsigned int;
  static constexpr u_char type = ASN_UNSIGNED;
  static Value parse(netsnmp_variable_list& var) { return AsnUnsignedToU32(var.val.integer); }
};

struct OctetStringComponent {
  using Value = Snmp::String;
  static constexpr u_char type = ASN_OCTET_STR;
  static Value parse(netsnmp_variable_list& var) {
    return AsnOctetStringToSnmpString(var.val.string, static_cast<unsigned int>(var.val_len));
  }
};

struct IpAddressComponent {
  using Value = Pelt::IpAddr;
  static constexpr u_char type = ASN_IPADDRESS;
  static Value parse(netsnmp_variable_list& var) {
    if (var.val_len != 4) Quor::throwRangeException("IpAddress of " + std::to_string(var.val_len) + " bytes");
    return AsnIpAddressToPeltIpAddr(var.val.string);
  }
};

// An object identifier, in its dotted form ("0.0").
struct ObjectIdComponent {
  using Value = std::string;
  static constexpr u_char type = ASN_OBJECT_ID;
  static Value parse(netsnmp_variable_list& var) {
    std::string dotted;
    for (std::size_t i = 0; i < var.val_len / sizeof(oid); ++i)
      dotted += (i ? "." : "") + std::to_string(var.val.objid[i]);
    return dotted;
  }
};
