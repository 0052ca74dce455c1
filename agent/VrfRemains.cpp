#include "agent/VrfRemains.h"

#include "platform/quor/Reaper.h"

namespace IpSnmp {

namespace {

// Rows freed per step: a few hundred microseconds.
constexpr int rowsPerStep = 256;

// Deletes rows of `table` from its first until it is empty, a step at a time, then lets it go.
template <class Table, class FirstRow, class DelRow>
Quor::ReapStep drain(Quor::Ptr<Table> table, FirstRow first, DelRow del) {
  return [table = std::move(table), first, del]() {
    for (int n = 0; n < rowsPerStep; ++n) {
      const auto* row = first(*table);
      if (!row) return false;
      del(*table, row->fwkKey());
    }
    return true;
  };
}

}  // namespace

void reapVrfRemains(VrfRoot& root) {
  root.arpTableSmDel();  // holds no rows: it goes at once
  // The route machines' backlogs and the route rows are values in blocks, a few thousand blocks for
  // a million routes: they go at once.
  if (Quor::Ptr<IpRouteTableSm> routes = root.ipRouteTableSmDel()) routes->quorDoZombieReactors(true);
  if (Quor::Ptr<IpMib> ipMib = root.ipMib()) {
    root.ipMibIs(nullptr);
    Quor::reap(drain(
        ipMib, [](const IpMib& mib) { return mib.arpTable().firstMember(); },
        [](IpMib& mib, const ArpTableIndex& index) { mib.arpTableDel(index); }));
  }
  root.ipForwardMibIs(nullptr);
}

}  // namespace IpSnmp
