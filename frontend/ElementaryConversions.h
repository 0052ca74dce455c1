#pragma once
// The elementary conversions to ASN form, and SnmpConvert, the one form in which handlers call them.
//
// Every conversion takes the value, a buffer and the buffer's size, and returns the number of bytes
// written, or a negative number on failure; callers test for < 0 only. The bytes are what
// snmp_set_var_typed_value takes for the column's ASN type.

// An int for ASN_INTEGER. Written as a C int: net-snmp sign-extends that width, whereas a long is
// read as unsigned and a negative value would turn into a large positive one.
struct S32ToAsnIntegerF {
  int operator()(int value, unsigned char* buffer, int size) const;
};

template <class T, class F>
int SnmpConvert(T value, unsigned char* buffer, int size) {
  return F()(value, buffer, size);
}
