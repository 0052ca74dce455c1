#pragma once
// initialize_table_<table>, told once for every iterated table of the front end: the registration
// with its entity, index list, explicit column list and iterator information, in the default context
// or in a VRF's, where the unit's ContextRegistrations keeps what unregister_<Unit> must take away.
#include <span>

#include "frontend/ContextRegistrations.h"
#include "platform/quor/Entity.h"
#include "platform/snmp/NetSnmp.h"

struct IteratedTableRegistration {
  struct Index {
    u_char type;
    const char* name;  // the index's MIB name, for the trace of a failure
  };

  const char* name;  // "ipAddrTable"; the registration is "<name>_<context>"
  std::span<const oid> root;  // the table object, without the entry's 1
  int modes;
  Netsnmp_Node_Handler* handler;
  std::span<const Index> indexes;
  std::span<const unsigned int> columns;  // the valid columns, ascending: also the bounds
  const char* defaultPath;  // the entity of the default context
  // The entity of a VRF's context, "%s" standing for its name; null when the table exists in the
  // default context only.
  const char* contextPathFormat;
  // The entity as the frame's container, or null when it is absent or of another type.
  void* (*entityOf)(Quor::Entity* entity);
  Netsnmp_First_Data_Point* getFirstDataPoint;
  Netsnmp_Next_Data_Point* getNextDataPoint;
  Netsnmp_Make_Data_Context* makeDataContext;
  Netsnmp_Free_Data_Context* freeDataContext;
  Netsnmp_Free_Loop_Context* freeLoopContextAtEnd;
  // The handler above the table helper that answers most GETs and GETNEXTs without the helpers.
  Netsnmp_Node_Handler* answerDirectly;
  // Rows walked in index order: the helper may stop at the first row above the index, requests
  // arrive one varbind at a time (serialize handler), carry the hint and may be answered directly.
  // Off for a table whose rows have no index order.
  bool indexOrder = true;
};

// The frame's functions of `table`, in the order of the fields above.
#define IPSNMP_ITERATOR_FUNCTIONS(table)                                                                  \
  table##_get_first_data_point, table##_get_next_data_point, table##_make_data_context,                   \
      table##_free_data_context, table##_free_loop_context_at_end, table##_answer_directly

// Where the tables of the IP-MIB container find it: the default context's entity, and a VRF's with
// "%s" standing for its name. IpBase and IpSwForwarding both serve from it.
inline constexpr const char* ipMibDefaultPath = "snmp/ip/ipmib";
inline constexpr const char* ipMibContextPathFormat = "snmp/ip/vrf.mibs/%s.ipmib";

template <class Container>
void* entityAs(Quor::Entity* entity) {
  return dynamic_cast<Container*>(entity);
}

// Registers `table` in `context` ("" is the default context).
void initializeIteratedTable(const IteratedTableRegistration& table, const Quor::String8& context,
                             ContextRegistrations& registrations);
