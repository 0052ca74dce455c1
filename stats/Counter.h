#pragma once
// The link from a statistic named in the kernel's IPv6 file to the attribute that it fills.
//
// Each of the 25 attributes that the file names has one class derived from Counter and one global,
// constant instance of it, named like the class with a lower-case first letter (inReceivesCounter).
// counter(name, length) finds the instance of a stat name through CounterHash.
#include "stats/SwFwdStatsData.h"

namespace Ip {

class Counter {
 public:
  // The attribute's value. Kept for symmetry with write; the read of the counters does not use it.
  virtual U64 read(const SwFwdStatsData& data) const = 0;
  // Overwrites the attribute with `value`.
  virtual void write(SwFwdStatsData& data, unsigned long long value) const = 0;
  // The attribute's name, for traces.
  virtual Quor::String8 name() const = 0;

 protected:
  // The instances are never destroyed through a Counter pointer.
  ~Counter() = default;
};

#define IP_SW_FWD_COUNTER_CLASS(attr, Attr)                                                           \
  class Attr##Counter final : public Counter {                                                        \
   public:                                                                                            \
    U64 read(const SwFwdStatsData& data) const override;                                             \
    void write(SwFwdStatsData& data, unsigned long long value) const override;                        \
    Quor::String8 name() const override;                                                              \
  };                                                                                                  \
  extern const Attr##Counter attr##Counter;
IP_SW_FWD_STATS_NAMED_IN_SNMP6(IP_SW_FWD_COUNTER_CLASS)
#undef IP_SW_FWD_COUNTER_CLASS

// The counter of the IPv6 stat `name` of `length` characters, or null for a stat without one.
const Counter* counter(const char* name, unsigned int length);

}  // namespace Ip
