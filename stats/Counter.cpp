#include "stats/Counter.h"

#include "stats/CounterHash.h"

namespace Ip {

#define IP_SW_FWD_COUNTER_DEFINITION(attr, Attr)                                                      \
  U64 Attr##Counter::read(const SwFwdStatsData& data) const { return data.attr(); }                   \
  void Attr##Counter::write(SwFwdStatsData& data, unsigned long long value) const { data.attr##Is(value); } \
  Quor::String8 Attr##Counter::name() const { return Quor::String8(#attr); }                          \
  const Attr##Counter attr##Counter;
IP_SW_FWD_STATS_NAMED_IN_SNMP6(IP_SW_FWD_COUNTER_DEFINITION)
#undef IP_SW_FWD_COUNTER_DEFINITION

const Counter* counter(const char* name, unsigned int length) {
  const CounterHash::Entry* entry = CounterHash::in_word_set(name, length);
  return entry ? entry->counter : nullptr;
}

}  // namespace Ip
