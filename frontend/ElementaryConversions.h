#pragma once
// The elementary conversions to ASN form, and SnmpConvert, the one form in which handlers call them;
// beside them the reverse conversions that read an index varbind's value into a key part.
//
// Every conversion to ASN form takes the value, a buffer and the buffer's size, and returns the
// number of bytes written, or a negative number on failure; callers test for < 0 only. The bytes are
// what snmp_set_var_typed_value takes for the column's ASN type.
#include "platform/pelt/EthAddr.h"
#include "platform/pelt/IpAddr.h"
#include "platform/quor/String.h"

// An int for ASN_INTEGER. Written as a C int: net-snmp sign-extends that width, whereas a long is
// read as unsigned and a negative value would turn into a large positive one.
struct S32ToAsnIntegerF {
  int operator()(int value, unsigned char* buffer, int size) const;
};

// An unsigned int for ASN_UNSIGNED (Gauge32, Unsigned32).
struct U32ToAsnUnsignedF {
  int operator()(unsigned int value, unsigned char* buffer, int size) const;
};

// The low 32 bits for ASN_COUNTER.
struct U64ToCounter32F {
  int operator()(unsigned long long value, unsigned char* buffer, int size) const;
};

// A struct counter64 for ASN_COUNTER64.
struct U64ToCounter64F {
  int operator()(unsigned long long value, unsigned char* buffer, int size) const;
};

// A duration in seconds as hundredths for ASN_TIMETICKS; negative durations are 0.
struct SecondsToTimeTicksF {
  int operator()(double seconds, unsigned char* buffer, int size) const;
};

// A point in time, in seconds on the clock of Quor::now(), as the agent's uptime at that point for
// ASN_TIMETICKS. A point before the agent started reads 0.
struct NowSecondsToUptimeTimeTicksF {
  int operator()(double seconds, unsigned char* buffer, int size) const;
};

// The bytes of the string for ASN_OCTET_STR; fails when they do not fit.
struct StringToAsnOctetStringF {
  int operator()(const Quor::String8& value, unsigned char* buffer, int size) const;
};

// A dotted OID text ("0.0") as sub-identifiers for ASN_OBJECT_ID; fails on other text.
struct StringToAsnOidF {
  int operator()(const Quor::String8& value, unsigned char* buffer, int size) const;
};

// The 4 octets of the address, first octet first: ASN_IPADDRESS, or an implied IPv4 index.
struct PeltIpAddrToAsnOctetStringF {
  int operator()(const Pelt::IpAddr& value, unsigned char* buffer, int size) const;
};

// The 6 octets of the MAC address for ASN_OCTET_STR.
struct PeltEthAddrToAsnOctetStringF {
  int operator()(const Pelt::EthAddr& value, unsigned char* buffer, int size) const;
};

template <class T, class F>
int SnmpConvert(T value, unsigned char* buffer, int size) {
  return F()(value, buffer, size);
}

// Reverse conversions of a varbind's `val`. A value without counterpart in the target type raises
// Quor::RangeException.
int AsnIntegerToS32(void* value);
unsigned int AsnUnsignedToU32(void* value);
Pelt::IpAddr AsnIpAddressToPeltIpAddr(void* value);
Snmp::String AsnOctetStringToSnmpString(void* value, unsigned int length);
