#pragma once
// Perfect hash of the IPv6 stat names that have a Counter, in the form of the gperf tool's output.
//
// The hash of a name is its length plus the associated values of its characters 7 and 8 (from 0);
// the table holds each name at the index of its hash, so a lookup costs two character lookups and
// one string comparison. Names shorter than 10 or longer than 19 characters are never hashed.
#include "stats/Counter.h"

namespace Ip {

class CounterHash {
 public:
  struct Entry {
    const char* name;
    const Counter* counter;
  };

  static unsigned int hash(const char* str, unsigned int len);
  // The entry of `str`, `len` characters and NUL-terminated, or null when it has none.
  static const Entry* in_word_set(const char* str, unsigned int len);
};

}  // namespace Ip
