#include "frontend/TableRegistration.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "frontend/IteratedTable.h"
#include "frontend/IteratorHint.h"
#include "frontend/UnitRegistration.h"
#include "platform/snmp/SnmpUtil.h"

namespace {

netsnmp_column_info* newColumnInfo(std::span<const unsigned int> columns) {
  auto* info = static_cast<netsnmp_column_info*>(std::calloc(1, sizeof(netsnmp_column_info)));
  info->isRange = 0;
  info->list_count = static_cast<char>(columns.size());
  // net-snmp only reads the list; it is a static array of the table.
  info->details.list = const_cast<unsigned int*>(columns.data());
  return info;
}

netsnmp_table_registration_info* newTableInfo(const IteratedTableRegistration& table, const Quor::String8& context,
                                              netsnmp_column_info* columns) {
  auto* info = SNMP_MALLOC_TYPEDEF(netsnmp_table_registration_info);
  for (const IteratedTableRegistration::Index& index : table.indexes)
    if (!snmp_varlist_add_variable(&info->indexes, nullptr, 0, index.type, nullptr, 0))
      QTRACE(tableTracer(), 0,
             "Failed to set up " << index.name << " in netsnmp table_info in context \"" << context << "\"");
  info->min_column = table.columns.front();
  info->max_column = table.columns.back();
  info->valid_columns = columns;
  return info;
}

netsnmp_iterator_info* newIteratorInfo(const IteratedTableRegistration& table, void* container,
                                       netsnmp_table_registration_info* tableInfo) {
  auto* iinfo = SNMP_MALLOC_TYPEDEF(netsnmp_iterator_info);
  iinfo->get_first_data_point = table.getFirstDataPoint;
  iinfo->get_next_data_point = table.getNextDataPoint;
  iinfo->make_data_context = table.makeDataContext;
  iinfo->free_data_context = table.freeDataContext;
  iinfo->free_loop_context_at_end = table.freeLoopContextAtEnd;
  iinfo->myvoid = container;
  iinfo->table_reginfo = tableInfo;
  if (table.indexOrder) iinfo->flags |= NETSNMP_ITERATOR_FLAG_SORTED;
  return iinfo;
}

DirectAnswerState* newDirectAnswerState(netsnmp_variable_list* indexes) {
  return new DirectAnswerState{snmp_clone_varbind(indexes), snmp_clone_varbind(indexes)};
}

void* cloneDirectAnswerState(void* scratch) { return newDirectAnswerState(static_cast<DirectAnswerState*>(scratch)->parsed); }

void freeDirectAnswerState(void* scratch) {
  const auto* state = static_cast<DirectAnswerState*>(scratch);
  snmp_free_varbind(state->parsed);
  snmp_free_varbind(state->written);
  if (state->lastRow) state->freeLastRow(state->lastRow);
  delete state;
}

// Places the direct handler of `table` right above the table helper, below the serialize and
// bulk-to-next handlers, so that it sees one GET or GETNEXT at a time.
void injectDirectAnswers(netsnmp_handler_registration* reg, const IteratedTableRegistration& table,
                         netsnmp_variable_list* indexes) {
  netsnmp_mib_handler* handler = netsnmp_create_handler("ipsnmp_direct_answers", table.answerDirectly);
  if (!handler) return;
  handler->myvoid = newDirectAnswerState(indexes);
  handler->data_clone = cloneDirectAnswerState;
  handler->data_free = freeDirectAnswerState;
  if (netsnmp_inject_handler_before(reg, handler, TABLE_HANDLER_NAME) != SNMPERR_SUCCESS) netsnmp_handler_free(handler);
}

}  // namespace

void initializeIteratedTable(const IteratedTableRegistration& table, const Quor::String8& context,
                             ContextRegistrations& registrations) {
  QTRACE(tableTracer(), 1,
         "initialize_table_" << table.name << " initializing oid " << oidText(table.root) << " in context \""
                             << context << "\"");
  const std::string registrationName = std::string(table.name) + "_" + context.str();
  netsnmp_handler_registration* reg = netsnmp_create_handler_registration(
      registrationName.c_str(), table.handler, table.root.data(), table.root.size(), table.modes);
  Quor::String8 path(table.defaultPath);
  if (!context.empty()) {
    if (!table.contextPathFormat) {
      netsnmp_handler_registration_free(reg);
      QTRACE(tableTracer(), 2,
             "initialize_table_" << table.name << " in context \"" << context
                                 << "\" morvanePathWithContext not specified ");
      return;
    }
    path = Quor::format(table.contextPathFormat, context.str().c_str());
    reg->contextName = strdup(context.str().c_str());
  }
  // The registration holds a plain pointer: the entity outlives the context's registrations.
  const Quor::Ptr<Quor::Entity> entity = SnmpUtil::getEntityRelative(path.str().c_str());
  reg->my_reg_void = table.entityOf(entity.ptr());

  netsnmp_column_info* columns = newColumnInfo(table.columns);
  netsnmp_table_registration_info* tableInfo = newTableInfo(table, context, columns);
  netsnmp_iterator_info* iinfo = newIteratorInfo(table, reg->my_reg_void, tableInfo);
  // In a VRF's context net-snmp frees the iterator information with the registration, and the unit
  // frees the column list; the default context's blocks stay for the life of the process.
  if (!context.empty()) iinfo->flags |= NETSNMP_HANDLER_OWNS_IINFO;
  const bool ownedByHandler = iinfo->flags & NETSNMP_HANDLER_OWNS_IINFO;

  // A refused registration is freed by the agent at once, with the iterator information it owns.
  if (netsnmp_register_table_iterator(reg, iinfo) != MIB_REGISTERED_OK) {
    if (!ownedByHandler) netsnmp_iterator_delete_table(iinfo);
    std::free(columns);
    QTRACE(tableTracer(), 1, "initialize_table_" << table.name << " refused in context \"" << context << "\"");
    return;
  }
  if (table.indexOrder) {
    netsnmp_inject_handler(reg, netsnmp_get_serialize_handler());
    injectIteratorHint(reg);
    injectDirectAnswers(reg, table, tableInfo->indexes);
  }
  registrations.registrationIs(context, reg);
  registrations.columnInfoIs(context, columns);
  QTRACE(tableTracer(), 8, "Initialized table " << table.name << " in context \"" << context << "\"");
}
