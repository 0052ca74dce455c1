#pragma once
// The hint of the table-iterator helper: the request's parsed index, handed to a table's
// get_first_data_point in *loopContext, so that a GET or GETNEXT for an existing row starts the
// search at that row instead of at the first one.
//
// The helper of the distribution's net-snmp leaves *loopContext null. The hint handler, placed
// between the table helper and the table-iterator helper of a registration, keeps the request's
// netsnmp_table_request_info pending while the iterator helper runs, and the first
// get_first_data_point of the request takes it over. It is given once: when a GETNEXT runs off the
// end of column N, the helper searches again for column N+1, and that search must start at the first
// row, so the second get_first_data_point of the request finds nothing pending. The serialize
// handler above the table helper makes every call carry one request; a call with several carries
// no hint.
#include "platform/snmp/NetSnmp.h"

// Injects the hint handler below the table helper of `reg`, which must already be registered as an
// iterated table. Returns whether the handler is in place.
bool injectIteratorHint(netsnmp_handler_registration* reg);

// Called on entry of a table's get_first_data_point: a null *loopContext receives the pending hint.
// The pending hint is consumed in every case.
void deliverIteratorHint(void** loopContext);

// Whether hints are used at all (on by default). Off, every search starts at the first row, also
// when a helper passed a hint of its own: that shows what the hint saves; answers are the same.
void iteratorHintsEnabledIs(bool enabled);
