#pragma once
// The iterated table frame: the six functions that every table of the front end gives the
// table-iterator helper of net-snmp, written once over a table's traits.
//
// Loop and data contexts are heap copies of the table's const iterator, which pins its row with a
// strong reference: the row stays readable after its removal, and the iterator finds its place again
// by key when the table's version has changed since it last stepped. Nothing is kept between
// requests; a request finds its place from its index alone, through the hint (IteratorHint.h): a
// hint that names an existing row starts the search there, anything else starts it at the first row.
// A hint can only shorten a search, never change its answer.
//
// A table's traits (struct T) give:
//   name, keyName                   "ipAddrTable", "Pelt::IpAddr" (the key's name in traces)
//   Container, collection(c)        the entity in iinfo->myvoid and its collection
//   hinted                          whether get_first_data_point reads a hint
//   Components, componentNames      index components for the hint: IndexComponents.h kinds
//   keyOf(values...)                the key of the parsed components
//   writeIndex(row, IndexWriter&)   the index varbinds of a row
//   bufferSize                      the handler's conversion buffer
//   isColumn(colnum)                the columns served
//   column(colnum, row, buffer)     one column's value (ColumnValue)
//   refusedByName(colnum)           the column's name when a SET of it is "not configured", else null
#include <cstddef>
#include <optional>
#include <tuple>
#include <utility>

#include "frontend/IndexComponents.h"
#include "frontend/IteratorHint.h"
#include "platform/quor/Exception.h"
#include "platform/quor/Flitlog.h"
#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"
#include "platform/snmp/SnmpUtil.h"

// What a column computed: the ASN type, the length that the conversion returned into the buffer,
// and the text that a failure traces after "handle_<table> - ". A positive `limit` fails a longer
// result as well, with the trace "entity <limitPath> length out of range: <limitName> (<length>)".
struct ColumnValue {
  u_char type;
  int length;
  const char* failure;
  int limit = 0;
  const char* limitName = nullptr;
  const char* limitPath = nullptr;
};

// Values of the common conversions, converted with the frame's size of 1024 bytes.
ColumnValue integerValue(int value, unsigned char* buffer, const char* failure);        // ASN_INTEGER
ColumnValue unsignedValue(unsigned int value, unsigned char* buffer, const char* failure);  // ASN_UNSIGNED
ColumnValue ipAddressValue(Pelt::IpAddr value, unsigned char* buffer, const char* failure);  // ASN_IPADDRESS

// The trace facility of the frame.
const Quor::Tracer& tableTracer();

// Writes a row's index into the helper's varbind list, one component after the other, each traced
// as "<table>IterationHelper - iterator has another value: <field>=<value>".
class IndexWriter {
 public:
  IndexWriter(const char* table, netsnmp_variable_list* first) : table_(table), next_(first) {}

  void integer(const char* field, int value);                                  // ASN_INTEGER
  void unsignedInteger(const char* field, unsigned int value);                 // ASN_UNSIGNED
  void octets(const char* field, const Snmp::String& value, int bufferSize);   // ASN_OCTET_STR
  // An IPv4 address as an implied string: its four octets, with no length in front.
  void ipAddress(const char* field, Pelt::IpAddr value);

 private:
  void set(u_char type, const unsigned char* bytes, int length);
  const char* table_;
  netsnmp_variable_list* next_;
};

// The parts of the handler that do not depend on the row type.
namespace TableHandler {
// Traces the entry of <table>_handler and its mode.
void traceEntry(const char* table, int mode);
// Refuses a request of any mode but GET on the first unprocessed request: notWritable.
int refuseSet(const char* table, netsnmp_request_info* requests, const char* (*refusedByName)(int colnum));
// Sets a computed column on the request, or fails the list with a general error.
int answer(const char* table, netsnmp_request_info* requests, netsnmp_request_info* request,
           const ColumnValue& value, const unsigned char* buffer);
// The column of a request; 0 without table information.
int columnOf(netsnmp_request_info* request);
// Traces and sets noSuchObject for a GET of a column that the table does not serve.
void invalidColumn(const char* table, netsnmp_request_info* request, int colnum);
}  // namespace TableHandler

template <class T>
class IteratedTable {
 public:
  using Collection = std::remove_cvref_t<decltype(T::collection(std::declval<const typename T::Container&>()))>;
  using Iterator = typename Collection::IteratorConst;
  using Key = typename Iterator::Key;

  static netsnmp_variable_list* getFirstDataPoint(void** loopContext, void**, netsnmp_variable_list* putIndexData,
                                                  netsnmp_iterator_info* iinfo) {
    Iterator* loop = nullptr;
    if constexpr (T::hinted) deliverIteratorHint(loopContext);
    if (const auto* container = static_cast<const typename T::Container*>(iinfo->myvoid)) {
      const Collection& table = T::collection(*container);
      std::optional<Iterator> start;
      if constexpr (T::hinted) {
        const auto* hint = static_cast<const netsnmp_table_request_info*>(*loopContext);
        QTRACE(tableTracer(), 2,
               T::name << "_get_first_data_point - *hint = " << static_cast<const void*>(hint)
                       << ", number_indexes = " << (hint ? hint->number_indexes : 0));
        if (hint && hint->number_indexes == std::tuple_size_v<typename T::Components>)
          start = hintedRow(table, hint->indexes);
      }
      loop = new Iterator(start ? *start : table.begin());
      QTRACE(tableTracer(), 2,
             T::name << "_get_first_data_point - allocated new loop context " << static_cast<const void*>(loop)
                     << ", hintMatched=" << (start ? 1 : 0));
    }
    *loopContext = loop;
    return iterationHelper(loop, putIndexData);
  }

  static netsnmp_variable_list* getNextDataPoint(void** loopContext, void** dataContext,
                                                 netsnmp_variable_list* putIndexData, netsnmp_iterator_info*) {
    auto* loop = static_cast<Iterator*>(*loopContext);
    if (!loop || loop->atEnd()) {
      QTRACE(tableTracer(), 2,
             T::name << "_get_next_data_point - at end of loop context " << static_cast<const void*>(loop));
      return nullptr;
    }
    QTRACE(tableTracer(), 2,
           T::name << "_get_next_data_point - advancing loop context " << static_cast<const void*>(loop)
                   << " ; data context " << *dataContext);
    // Along the links while the table is unchanged, else to the next key above the pinned row's.
    loop->advance();
    if (*dataContext) *static_cast<Iterator*>(*dataContext) = *loop;
    return iterationHelper(loop, putIndexData);
  }

  static void* makeDataContext(void* loopContext, netsnmp_iterator_info*) {
    const auto* loop = static_cast<const Iterator*>(loopContext);
    Iterator* data = loop ? new Iterator(*loop) : nullptr;
    QTRACE(tableTracer(), 2,
           T::name << "_make_data_context - allocated data context " << static_cast<const void*>(data)
                   << " for loop context " << loopContext);
    return data;
  }

  static void freeDataContext(void* dataContext, netsnmp_iterator_info*) {
    QTRACE(tableTracer(), 2, T::name << "_free_data_context " << dataContext);
    delete static_cast<Iterator*>(dataContext);
  }

  static void freeLoopContextAtEnd(void* loopContext, netsnmp_iterator_info*) {
    QTRACE(tableTracer(), 2, T::name << "_free_loop_context_at_end " << loopContext);
    delete static_cast<Iterator*>(loopContext);
  }

  static int handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* reqinfo,
                     netsnmp_request_info* requests) {
    TableHandler::traceEntry(T::name, reqinfo->mode);
    if (reqinfo->mode != MODE_GET) return TableHandler::refuseSet(T::name, requests, T::refusedByName);
    unsigned char buffer[T::bufferSize];
    for (netsnmp_request_info* request = requests; request; request = request->next) {
      if (request->processed) {
        QTRACE(tableTracer(), 2,
               T::name << "_handler: request " << static_cast<const void*>(request) << " already processed");
        continue;
      }
      const auto* data = static_cast<const Iterator*>(netsnmp_extract_iterator_context(request));
      if (!data || data->atEnd()) {
        QTRACE(tableTracer(), 2, T::name << "_handler: null data context in request");
        return SNMP_ERR_NOERROR;
      }
      const int colnum = TableHandler::columnOf(request);
      if (!T::isColumn(colnum)) {
        TableHandler::invalidColumn(T::name, request, colnum);
        return SNMP_ERR_NOERROR;
      }
      QTRACE(tableTracer(), 2,
             T::name << "_handler: request GET for column " << colnum << ", key " << data->key());
      const int result = TableHandler::answer(T::name, requests, request, T::column(colnum, **data, buffer), buffer);
      if (result != SNMP_ERR_NOERROR) return result;
    }
    return SNMP_ERR_NOERROR;
  }

 private:
  static netsnmp_variable_list* iterationHelper(const Iterator* iterator, netsnmp_variable_list* putIndexData) {
    if (!iterator || iterator->atEnd()) {
      QTRACE(tableTracer(), 2, T::name << "IterationHelper - iterator is at end");
      return nullptr;
    }
    IndexWriter writer(T::name, putIndexData);
    T::writeIndex(**iterator, writer);
    return putIndexData;
  }

  // The row that the hint names exactly, or nothing: a row with a greater key is not a start, since
  // the helper must then see every row from the first.
  static std::optional<Iterator> hintedRow(const Collection& table, netsnmp_variable_list* indexes) {
    return readComponents(table, indexes, std::make_index_sequence<std::tuple_size_v<typename T::Components>>());
  }

  template <std::size_t... I>
  static std::optional<Iterator> readComponents(const Collection& table, netsnmp_variable_list* var,
                                                std::index_sequence<I...>) {
    std::tuple<std::optional<typename std::tuple_element_t<I, typename T::Components>::Value>...> values;
    std::size_t accepted = 0;
    // Every component is read, also after a bad one; only the count decides.
    (readComponent<I>(var, std::get<I>(values), accepted), ...);
    constexpr std::size_t needed = sizeof...(I);
    if (accepted < needed) {
      QTRACE(tableTracer(), 2,
             T::name << "_get_first_data_point - needed " << needed << " components, found only " << accepted);
      return std::nullopt;
    }
    try {
      const Key key = T::keyOf(*std::get<I>(values)...);
      Iterator row = table.startAt(key);
      if (!row.atEnd() && row.key() == key) return row;
      QTRACE(tableTracer(), 2, T::name << "_get_first_data_point - key '" << key << "' not found in table");
    } catch (const Quor::RangeException& e) {
      QTRACE(tableTracer(), 0, "Bad hint for " << T::name << ": " << T::keyName << " ctor threw exception: " << e);
    }
    return std::nullopt;
  }

  template <std::size_t I, class Value>
  static void readComponent(netsnmp_variable_list*& var, std::optional<Value>& value, std::size_t& accepted) {
    if (!var) return;
    using Component = std::tuple_element_t<I, typename T::Components>;
    const char* const name = T::componentNames[I];
    if (var->type != Component::type) {
      QTRACE(tableTracer(), 0,
             "hint for " << name << " has incorrect type! Expecting " << int(Component::type) << " but got "
                         << int(var->type));
    } else {
      try {
          value = Component::parse(*var);
        QTRACE(tableTracer(), 2, "hint component " << name << " is '" << *value << "'");
        ++accepted;
      } catch (const Quor::RangeException& e) {
        QTRACE(tableTracer(), 0, "hint for index " << name << " of " << T::name << " is out of range! " << e);
      }
    }
    var = var->next_variable;
  }
};

// The named functions of one table, each forwarding to the frame: <table>_get_first_data_point,
// <table>_get_next_data_point, <table>_make_data_context, <table>_free_data_context,
// <table>_free_loop_context_at_end and <table>_handler.
#define IPSNMP_DECLARE_ITERATED_TABLE(table)                \
  Netsnmp_First_Data_Point table##_get_first_data_point;    \
  Netsnmp_Next_Data_Point table##_get_next_data_point;      \
  Netsnmp_Make_Data_Context table##_make_data_context;      \
  Netsnmp_Free_Data_Context table##_free_data_context;      \
  Netsnmp_Free_Loop_Context table##_free_loop_context_at_end; \
  Netsnmp_Node_Handler table##_handler

#define IPSNMP_DEFINE_ITERATED_TABLE(table, Traits, unit)                                                       \
  netsnmp_variable_list* table##_get_first_data_point(void** loopContext, void** dataContext,                \
                                                      netsnmp_variable_list* putIndexData,                    \
                                                      netsnmp_iterator_info* iinfo) {                         \
    return IteratedTable<Traits>::getFirstDataPoint(loopContext, dataContext, putIndexData, iinfo);            \
  }                                                                                                           \
  netsnmp_variable_list* table##_get_next_data_point(void** loopContext, void** dataContext,                 \
                                                     netsnmp_variable_list* putIndexData,                     \
                                                     netsnmp_iterator_info* iinfo) {                          \
    return IteratedTable<Traits>::getNextDataPoint(loopContext, dataContext, putIndexData, iinfo);             \
  }                                                                                                           \
  void* table##_make_data_context(void* loopContext, netsnmp_iterator_info* iinfo) {                          \
    return IteratedTable<Traits>::makeDataContext(loopContext, iinfo);                                         \
  }                                                                                                           \
  void table##_free_data_context(void* dataContext, netsnmp_iterator_info* iinfo) {                           \
    IteratedTable<Traits>::freeDataContext(dataContext, iinfo);                                                \
  }                                                                                                           \
  void table##_free_loop_context_at_end(void* loopContext, netsnmp_iterator_info* iinfo) {                    \
    IteratedTable<Traits>::freeLoopContextAtEnd(loopContext, iinfo);                                           \
  }                                                                                                           \
  int table##_handler(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,                    \
                      netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {                  \
    FLITLOG_BLOCK(unit, "int " #table "_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, "        \
                        "netsnmp_agent_request_info*, netsnmp_request_info*)");                               \
    return IteratedTable<Traits>::handler(handler, reginfo, reqinfo, requests);                                \
  }
