#pragma once
// The hint of the table-iterator helper: the request's parsed index, handed to a table's
// get_first_data_point, so that a GET or GETNEXT starts its search near the request's place in
// the table instead of at the first row (how near: IteratedTable.h).
//
// The helper of the distribution's net-snmp leaves *loopContext null. The hint handler, placed
// between the table helper and the table-iterator helper of a registration, keeps the request's
// netsnmp_table_request_info and its mode pending while the iterator helper runs, and the first
// get_first_data_point of the request takes them over. It is given once: when a GETNEXT runs off the
// end of column N, the helper searches again for column N+1, and that search must start at the first
// row, so the second get_first_data_point of the request finds nothing pending. The serialize
// handler above the table helper makes every call carry one request; a call with several carries
// no hint.
#include "platform/snmp/NetSnmp.h"

// What the first get_first_data_point of a request learns about it.
struct IteratorHint {
  // The request's parsed index, or null.
  const netsnmp_table_request_info* index = nullptr;
  // Only a row of exactly this index answers the request (GET, and the first phase of SET), so a
  // search may end once it is past every row that could have it. False when the mode is unknown.
  bool exact = false;
};

// Injects the hint handler below the table helper of `reg`, which must already be registered as an
// iterated table. Returns whether the handler is in place.
bool injectIteratorHint(netsnmp_handler_registration* reg);

// Called on entry of a table's get_first_data_point with what the helper left in *loopContext: a
// hint of the helper's own is kept, else the pending one is taken. The pending hint is consumed in
// every case.
IteratorHint takeIteratorHint(void* helperHint);

// Whether hints are used at all (on by default). Off, every request goes through the helpers and
// every search starts at the first row, also when a helper passed a hint of its own: that shows what
// the hint and the direct answers save; answers are the same.
void iteratorHintsEnabledIs(bool enabled);
bool iteratorHintsEnabled();
