#pragma once
// The rule of every creating mutator: a member's constructor parameters are fixed for its life, and
// creating it again with a different one is a name-in-use failure naming both values.
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/quor/Ptr.h"
#include "platform/quor/Strep.h"

namespace IpSnmp {

template <class V>
Quor::String8 parameterStrep(const V& value) {
  if constexpr (requires { value.ptr(); })
    return Quor::valueToStrepOfRawPtr(value.ptr());
  else if constexpr (std::is_integral_v<V>)
    return Quor::valueToStrep(static_cast<U64>(value));
  else
    return valueToStrep(value);
}

// Fails when `given` differs from the member's `current` value of constructor parameter `attr`.
template <class V>
void checkConstructorParameter(std::string_view attr, const V& given, const V& current) {
  if (given == current) return;
  Quor::throwNameInUseException("Reinstantiating the pointer interface where constructor parameter attribute " +
                                std::string(attr) + " has a different value of " + parameterStrep(given).str() +
                                " than the current value of " + parameterStrep(current).str() + " not allowed");
}

}  // namespace IpSnmp
