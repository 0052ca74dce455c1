#pragma once
// The comparison family that every table key offers beside its own == and <.

namespace IpSnmp {

template <class T>
struct KeyOperators {
  friend bool operator<=(const T& a, const T& b) { return !(b < a); }
  friend bool operator>(const T& a, const T& b) { return !(a <= b); }
  friend bool operator>=(const T& a, const T& b) { return !(a < b); }
  // True for the default-constructed value.
  bool operator!() const { return static_cast<const T&>(*this) == T(); }
};

}  // namespace IpSnmp
