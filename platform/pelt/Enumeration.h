#pragma once
// The text functions that every enumeration of the system has, declared at once beside the enum:
//   stringValue(e)            the enumerator's name, or "<Type>(<n>)" for a number without one
//   <Type>Instance(n | name)  the enumerator of a number or a name; an unknown one raises
//                             Quor::RangeException with the bare type name
//   valueToStrep(e)           the name in single quotes, and sequenceToValue reading it back
// operator<< is the enumeration's own. EnumText.h defines them from a table of names.
#include "platform/quor/Strep.h"

#define PELT_DECLARE_ENUM_TEXT(Type)                                                   \
  Quor::String8 stringValue(Type value);                                               \
  Type Type##Instance(unsigned int number);                                            \
  Type Type##Instance(const Quor::String8& name);                                      \
  Quor::String8 valueToStrep(Type value);                                              \
  Type sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, Type*)
