#pragma once
// The text forms shared by the platform's enumerations: an enumerator's name with a numeric
// fallback, and the lookups back from a number or a name.
#include <cstddef>
#include <string_view>

#include "platform/quor/Exception.h"
#include "platform/quor/Strep.h"
#include "platform/quor/String.h"

namespace Pelt {

template <class E>
struct Enumerator {
  E value;
  std::string_view name;
};

// The name of `value`, or "<typeName>(<number>)" for a number without one.
template <class E, std::size_t N>
Quor::String8 enumName(const Enumerator<E> (&table)[N], E value, const char* typeName) {
  for (const Enumerator<E>& e : table)
    if (e.value == value) return Quor::String8(e.name);
  return Quor::format("%s(%d)", typeName, static_cast<int>(value));
}

// The enumerator of that number; an unknown one raises RangeException with the bare type name.
template <class E, std::size_t N>
E enumByNumber(const Enumerator<E> (&table)[N], unsigned number, const char* typeName) {
  for (const Enumerator<E>& e : table)
    if (static_cast<unsigned>(e.value) == number) return e.value;
  Quor::throwRangeException(typeName);
}

// The enumerator of that name; an unknown one raises RangeException with the bare type name.
template <class E, std::size_t N>
E enumByName(const Enumerator<E> (&table)[N], std::string_view name, const char* typeName) {
  for (const Enumerator<E>& e : table)
    if (e.name == name) return e.value;
  Quor::throwRangeException(typeName);
}

}  // namespace Pelt

// Defines the functions that PELT_DECLARE_ENUM_TEXT(Type) declares, from `table`'s names.
#define PELT_DEFINE_ENUM_TEXT(Type, table)                                                                 \
  Quor::String8 stringValue(Type value) { return Pelt::enumName(table, value, #Type); }                  \
  Type Type##Instance(unsigned int number) { return Pelt::enumByNumber(table, number, #Type); }          \
  Type Type##Instance(const Quor::String8& name) { return Pelt::enumByName(table, name.view(), #Type); } \
  Quor::String8 valueToStrep(Type value) { return Quor::valueToStrep(stringValue(value)); } \
  Type sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, Type*) {          \
    return Type##Instance(Quor::readQuotedString(position, end));                                         \
  }
