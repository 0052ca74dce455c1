#pragma once
// The iterated table frame: the six functions that every table of the front end gives the
// table-iterator helper of net-snmp, written once over a table's traits.
//
// Data contexts are copies of the table's const iterator (from a ContextPool), which pins its row:
// the row stays readable after its removal, and the iterator finds its place again by key when the
// table's version has changed since it last stepped. A loop context is such an iterator and,
// for a GET that the hint placed, the last key whose row could answer it. Nothing is kept between
// requests; a request finds its place from its index alone, through the hint (IteratorHint.h):
//   - a hint that names an existing row starts the search at that row;
//   - a hint whose key, written back as an index, is exactly the request's index starts it at the
//     first row not below that key (one ordered lookup), and a GET's search ends after the last key
//     that writes that index;
//   - any other hint (wrong type, out of range, partial, longer than an index, a value that the
//     index cannot carry) starts it at the first row.
// Deliberate, and what the second case rests on: every table writes its index from the key alone,
// and for the keys that it holds, key order is the order of the written indexes (the tables are
// registered sorted). Then every row below the start has an index below the request's, which the
// helper would pass over anyway, and the helper still stops at the first row above the index. A hint
// can only shorten a search, never change its answer.
//
// Most requests never reach the helpers: a GET of a row, and a GETNEXT whose answer is a row of the
// same column, are answered directly (answerDirectly) by the handler placed above the table helper,
// when the index is empty (GETNEXT) or writes back exactly as above. The rows it reads, and the order
// it reads them in, are those of the hinted search: it answers as the helpers would, without their
// parsed index, data list and contexts per request. Anything else falls through to the helpers.
//
// A table's traits are a struct of static members: the concept IteratedTableTraits below says which.
#include <algorithm>
#include <climits>
#include <concepts>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <tuple>
#include <utility>

#include "frontend/ContextPool.h"
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
// as "<table>IterationHelper - iterator has another value: <field>=<value>"; with a null table,
// untraced (a hint's key written back).
class IndexWriter {
 public:
  IndexWriter(const char* table, netsnmp_variable_list* first) : table_(table), next_(first) {}

  void integer(const char* field, int value);                                  // ASN_INTEGER
  void unsignedInteger(const char* field, unsigned int value);                 // ASN_UNSIGNED
  void octets(const char* field, const Snmp::String& value, int bufferSize);   // ASN_OCTET_STR
  // An IPv4 address as an implied string: its four octets, with no length in front.
  void ipAddress(const char* field, Pelt::IpAddr value);
  // `length` octets as a string: the length, then the octets.
  void octets(const char* field, const U8* bytes, unsigned length);
  // An object identifier: its length, then its sub-identifiers.
  void objectId(const char* field, std::span<const oid> value);

 private:
  void set(u_char type, const unsigned char* bytes, int length);
  const char* table_;
  netsnmp_variable_list* next_;
};

// Parses index sub-identifiers into `into`, whose values from an earlier parse it frees first.
bool parseIndex(oid* index, std::size_t length, netsnmp_variable_list* into);

// What the direct handler of a registration keeps: index varbinds of its table's index types (the
// request's index is parsed into one, rows' keys are written into the other, which changes their
// types), and the instance and row of the last GETNEXT it answered, where the next request of a
// walk starts without parsing its index or looking it up: a table iterator, freed by `freeLastRow`.
struct DirectAnswerState {
  netsnmp_variable_list* parsed;
  netsnmp_variable_list* written;
  void* lastRow = nullptr;
  void (*freeLastRow)(void*) = nullptr;
  oid lastName[MAX_OID_LEN] = {};
  std::size_t lastNameLength = 0;
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

// The contract of a table's traits T.
template <class T>
concept IteratedTableTraits = requires(const typename T::Container& container, int colnum, unsigned char* buffer,
                                       IndexWriter& writer) {
  // "ipAddrTable", and the key's name in traces ("Pelt::IpAddr").
  { T::name } -> std::convertible_to<const char*>;
  { T::keyName } -> std::convertible_to<const char*>;
  // The ordered collection of the container that iinfo->myvoid holds, walked in key order.
  typename std::remove_cvref_t<decltype(T::collection(container))>::IteratorConst;
  // The index varbinds of the row of a key; for the keys the table holds, key order is index order.
  T::writeIndex(T::collection(container).begin().key(), writer);
  // The handler's conversion buffer, the columns served, one column's value, and the column's name
  // when a SET of it is "not configured" (else null).
  { T::bufferSize } -> std::convertible_to<int>;
  { T::isColumn(colnum) } -> std::same_as<bool>;
  { T::column(colnum, *T::collection(container).begin(), buffer) } -> std::same_as<ColumnValue>;
  { T::refusedByName(colnum) } -> std::convertible_to<const char*>;
  // Whether get_first_data_point reads a hint; a hinted table gives its index components (kinds of
  // IndexComponents.h) with their names, and keyOf(values...), the key of the parsed components.
  // Optional: lastKeyOfIndex(key), the greatest key that writes the same index as `key`, for a table
  // whose index leaves a part of its key out.
  { T::hinted } -> std::convertible_to<bool>;
  requires !T::hinted || requires {
    typename std::tuple_size<typename T::Components>::type;
    { T::componentNames[0] } -> std::convertible_to<const char*>;
  };
};

template <IteratedTableTraits T>
class IteratedTable {
 public:
  using Collection = std::remove_cvref_t<decltype(T::collection(std::declval<const typename T::Container&>()))>;
  using Iterator = typename Collection::IteratorConst;
  using Key = typename Iterator::Key;

  static netsnmp_variable_list* getFirstDataPoint(void** loopContext, void**, netsnmp_variable_list* putIndexData,
                                                  netsnmp_iterator_info* iinfo) {
    std::unique_ptr<Loop, FreeLoop> loop;
    IteratorHint hint;
    if constexpr (T::hinted) hint = takeIteratorHint(*loopContext);
    if (const auto* container = static_cast<const typename T::Container*>(iinfo->myvoid)) {
      const Collection& table = T::collection(*container);
      loop.reset(ContextPool<Loop>::make(table.begin()));
      if constexpr (T::hinted) {
        QTRACE(tableTracer(), 2,
               T::name << "_get_first_data_point - *hint = " << static_cast<const void*>(hint.index)
                       << ", number_indexes = " << (hint.index ? hint.index->number_indexes : 0));
        if (hint.index && hint.index->number_indexes == componentCount()) placeByHint(*loop, table, hint, putIndexData);
      }
      QTRACE(tableTracer(), 2,
             T::name << "_get_first_data_point - allocated new loop context " << static_cast<const void*>(loop.get())
                     << ", hintMatched=" << (loop->start == Start::hintedRow)
                     << ", lowerBound=" << (loop->start == Start::lowerBound));
    }
    *loopContext = loop.get();
    return iterationHelper(loop.release(), putIndexData);
  }

  static netsnmp_variable_list* getNextDataPoint(void** loopContext, void** dataContext,
                                                 netsnmp_variable_list* putIndexData, netsnmp_iterator_info*) {
    auto* loop = static_cast<Loop*>(*loopContext);
    if (!loop || loop->atEnd()) {
      QTRACE(tableTracer(), 2,
             T::name << "_get_next_data_point - at end of loop context " << static_cast<const void*>(loop));
      return nullptr;
    }
    QTRACE(tableTracer(), 2,
           T::name << "_get_next_data_point - advancing loop context " << static_cast<const void*>(loop)
                   << " ; data context " << *dataContext);
    // Along the links while the table is unchanged, else to the next key above the pinned row's.
    loop->row.advance();
    if (*dataContext) *static_cast<Iterator*>(*dataContext) = loop->row;
    return iterationHelper(loop, putIndexData);
  }

  static void* makeDataContext(void* loopContext, netsnmp_iterator_info*) {
    const auto* loop = static_cast<const Loop*>(loopContext);
    Iterator* data = loop ? ContextPool<Iterator>::make(loop->row) : nullptr;
    QTRACE(tableTracer(), 2,
           T::name << "_make_data_context - allocated data context " << static_cast<const void*>(data)
                   << " for loop context " << loopContext);
    return data;
  }

  static void freeDataContext(void* dataContext, netsnmp_iterator_info*) {
    QTRACE(tableTracer(), 2, T::name << "_free_data_context " << dataContext);
    ContextPool<Iterator>::free(static_cast<Iterator*>(dataContext));
  }

  static void freeLoopContextAtEnd(void* loopContext, netsnmp_iterator_info*) {
    QTRACE(tableTracer(), 2, T::name << "_free_loop_context_at_end " << loopContext);
    ContextPool<Loop>::free(static_cast<Loop*>(loopContext));
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

  // Above the table helper: answers a lone GET or GETNEXT itself when it can (see the top of this
  // file), else passes it down the chain.
  static int answerDirectly(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                            netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
    if constexpr (T::hinted) {
      const auto* container = static_cast<const typename T::Container*>(reginfo->my_reg_void);
      if (container && requests && !requests->next && iteratorHintsEnabled())
        if (const std::optional<int> result = answerAlone(T::collection(*container), *reginfo, reqinfo->mode,
                                                           *requests, *static_cast<DirectAnswerState*>(handler->myvoid)))
          return *result;
    }
    return netsnmp_call_next_handler(handler, reginfo, reqinfo, requests);
  }

 private:
  enum class Start { firstRow, hintedRow, lowerBound };

  // The loop context: where the search stands, how it started, and for a GET placed by its index the
  // last key whose row could answer it, after which the search ends.
  struct Loop {
    explicit Loop(Iterator at, Start how = Start::firstRow) : row(std::move(at)), start(how) {}
    Iterator row;
    Start start;
    std::optional<Key> last;
    bool atEnd() const { return row.atEnd() || (last && *last < row.key()); }
  };
  struct FreeLoop {
    void operator()(Loop* loop) const noexcept { ContextPool<Loop>::free(loop); }
  };

  static netsnmp_variable_list* iterationHelper(const Loop* loop, netsnmp_variable_list* putIndexData) {
    if (!loop || loop->atEnd()) {
      QTRACE(tableTracer(), 2, T::name << "IterationHelper - iterator is at end");
      return nullptr;
    }
    IndexWriter writer(T::name, putIndexData);
    T::writeIndex(loop->row.key(), writer);
    return putIndexData;
  }

  static constexpr std::size_t componentCount() { return std::tuple_size_v<typename T::Components>; }

  static Key lastKeyOfIndex(const Key& key) {
    if constexpr (requires { T::lastKeyOfIndex(key); })
      return T::lastKeyOfIndex(key);
    else
      return key;
  }

  // Whether `key`, written as the rows write their indexes, is exactly the request's index. The
  // helper's own list of index varbinds takes it: the start row's index overwrites it afterwards.
  static bool writesRequestIndex(const Key& key, const netsnmp_table_request_info& request,
                                 netsnmp_variable_list* scratch) {
    oid index[MAX_OID_LEN];
    std::size_t length = 0;
    return instanceOf(key, nullptr, 0, scratch, index, length) &&
           snmp_oid_compare(index, length, request.index_oid, request.index_oid_len) == 0;
  }

  // The direct answer to `request`, or nothing when it must go down to the helpers: another mode, a
  // column not served, an index that does not write back exactly, a GETNEXT past the column's last
  // row.
  static std::optional<int> answerAlone(const Collection& table, const netsnmp_handler_registration& reg, int mode,
                                        netsnmp_request_info& request, DirectAnswerState& scratch) {
    const bool get = mode == MODE_GET;
    netsnmp_variable_list& var = *request.requestvb;
    const std::size_t columnLength = reg.rootoid_len + 2;
    if ((!get && mode != MODE_GETNEXT) || request.processed || request.inclusive || var.name_length < columnLength ||
        var.name[reg.rootoid_len] != 1 || snmp_oid_ncompare(var.name, var.name_length, reg.rootoid, reg.rootoid_len,
                                                            reg.rootoid_len) != 0)
      return std::nullopt;
    const oid column = var.name[columnLength - 1];
    if (column > INT_MAX || !T::isColumn(static_cast<int>(column))) return std::nullopt;

    oid name[MAX_OID_LEN];
    std::size_t length = 0;
    Iterator row = table.begin();
    std::optional<Key> last;
    const auto* lastRow = static_cast<const Iterator*>(scratch.lastRow);
    if (!get && lastRow && snmp_oid_compare(var.name, var.name_length, scratch.lastName, scratch.lastNameLength) == 0) {
      row = *lastRow;  // the instance answered last, as a walk asks next: its index is known
    } else if (get || var.name_length > columnLength) {
      if (!parseIndex(var.name + columnLength, var.name_length - columnLength, scratch.parsed)) return std::nullopt;
      const std::optional<Key> key = keyOfIndex(scratch.parsed, false);
      if (!key || !instanceOf(*key, var.name, columnLength, scratch.written, name, length) ||
          snmp_oid_compare(name, length, var.name, var.name_length) != 0)
        return std::nullopt;
      row = !get && lastRow && lastRow->key() == *key ? *lastRow : table.startAt(*key);
      if (get) last = lastKeyOfIndex(*key);
    }
    // The helpers' sorted search from there: the first row of the index (GET) or above it (GETNEXT).
    for (; !row.atEnd() && !(last && *last < row.key()); row.advance()) {
      if (!instanceOf(row.key(), var.name, columnLength, scratch.written, name, length)) return std::nullopt;
      const int order = snmp_oid_compare(name, length, var.name, var.name_length);
      if (order < 0 || (order == 0 && !get)) {
        QTRACE(tableTracer(), 2, T::name << "_answer_directly - passing row " << row.key());
        continue;
      }
      if (order > 0 && get) break;  // no row has the index
      if (!get) {
        snmp_set_var_objid(&var, name, length);
        rememberRow(scratch, row, name, length);
      }
      unsigned char buffer[T::bufferSize];
      return TableHandler::answer(T::name, &request, &request, T::column(static_cast<int>(column), *row, buffer),
                                  buffer);
    }
    if (!get) return std::nullopt;
    netsnmp_request_set_error(&request, SNMP_NOSUCHINSTANCE);
    return SNMP_ERR_NOERROR;
  }

  static void rememberRow(DirectAnswerState& scratch, const Iterator& row, const oid* name, std::size_t length) {
    std::copy(name, name + length, scratch.lastName);
    scratch.lastNameLength = length;
    if (auto* lastRow = static_cast<Iterator*>(scratch.lastRow)) {
      *lastRow = row;
      return;
    }
    scratch.lastRow = new Iterator(row);
    scratch.freeLastRow = [](void* lastRow) { delete static_cast<Iterator*>(lastRow); };
  }

  // `prefix` (none when null) and the index sub-identifiers of `key`'s row, into `name`; false when
  // they do not fit. The rows' index varbinds are written into `written`.
  static bool instanceOf(const Key& key, oid* prefix, std::size_t prefixLength, netsnmp_variable_list* written,
                         oid (&name)[MAX_OID_LEN], std::size_t& length) {
    IndexWriter writer(nullptr, written);
    T::writeIndex(key, writer);
    return build_oid_noalloc(name, MAX_OID_LEN, &length, prefix, prefixLength, written) == SNMPERR_SUCCESS;
  }

  // Moves `loop` from the first row to where the hint lets the search start, if anywhere.
  static void placeByHint(Loop& loop, const Collection& table, const IteratorHint& hint,
                          netsnmp_variable_list* scratch) {
    const std::optional<Key> key = keyOfIndex(hint.index->indexes, true);
    if (!key) return;
    Iterator row = table.startAt(*key);
    if (!row.atEnd() && row.key() == *key) {
      loop.row = std::move(row);
      loop.start = Start::hintedRow;
    } else if (writesRequestIndex(*key, *hint.index, scratch)) {
      QTRACE(tableTracer(), 2,
             T::name << "_get_first_data_point - key '" << *key << "' not in table, starting at the next key");
      loop.row = std::move(row);
      loop.start = Start::lowerBound;
      if (hint.exact) loop.last = lastKeyOfIndex(*key);
    } else {
      QTRACE(tableTracer(), 2, T::name << "_get_first_data_point - key '" << *key << "' not found in table");
    }
  }

  // The key of parsed index varbinds, if every component is there and its value one that a key can
  // hold. Only a hint's failures are traced: a direct request that fails goes on to the hint.
  static std::optional<Key> keyOfIndex(netsnmp_variable_list* var, bool traced) {
    return keyOfComponents(var, traced, std::make_index_sequence<componentCount()>());
  }

  template <std::size_t... I>
  static std::optional<Key> keyOfComponents(netsnmp_variable_list* var, bool traced, std::index_sequence<I...>) {
    std::tuple<std::optional<typename std::tuple_element_t<I, typename T::Components>::Value>...> values;
    std::size_t accepted = 0;
    // Every component is read, also after a bad one; only the count decides.
    (readComponent<I>(var, std::get<I>(values), accepted, traced), ...);
    if (accepted < componentCount()) {
      if (traced)
        QTRACE(tableTracer(), 2,
               T::name << "_get_first_data_point - needed " << componentCount() << " components, found only "
                       << accepted);
      return std::nullopt;
    }
    try {
      return T::keyOf(*std::get<I>(values)...);
    } catch (const Quor::RangeException& e) {
      if (traced)
        QTRACE(tableTracer(), 0, "Bad hint for " << T::name << ": " << T::keyName << " ctor threw exception: " << e);
      return std::nullopt;
    }
  }

  template <std::size_t I, class Value>
  static void readComponent(netsnmp_variable_list*& var, std::optional<Value>& value, std::size_t& accepted,
                            bool traced) {
    if (!var) return;
    using Component = std::tuple_element_t<I, typename T::Components>;
    const char* const name = T::componentNames[I];
    if (var->type != Component::type) {
      if (traced)
        QTRACE(tableTracer(), 0,
               "hint for " << name << " has incorrect type! Expecting " << int(Component::type) << " but got "
                           << int(var->type));
    } else {
      try {
        value = Component::parse(*var);
        if (traced) QTRACE(tableTracer(), 2, "hint component " << name << " is '" << *value << "'");
        ++accepted;
      } catch (const Quor::RangeException& e) {
        if (traced)
          QTRACE(tableTracer(), 0, "hint for index " << name << " of " << T::name << " is out of range! " << e);
      }
    }
    var = var->next_variable;
  }
};

// The named functions of one table, each forwarding to the frame: <table>_get_first_data_point,
// <table>_get_next_data_point, <table>_make_data_context, <table>_free_data_context,
// <table>_free_loop_context_at_end, <table>_handler and <table>_answer_directly.
#define IPSNMP_DECLARE_ITERATED_TABLE(table)                \
  Netsnmp_First_Data_Point table##_get_first_data_point;    \
  Netsnmp_Next_Data_Point table##_get_next_data_point;      \
  Netsnmp_Make_Data_Context table##_make_data_context;      \
  Netsnmp_Free_Data_Context table##_free_data_context;      \
  Netsnmp_Free_Loop_Context table##_free_loop_context_at_end; \
  Netsnmp_Node_Handler table##_handler;                      \
  Netsnmp_Node_Handler table##_answer_directly

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
  }                                                                                                           \
  int table##_answer_directly(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,            \
                              netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {          \
    return IteratedTable<Traits>::answerDirectly(handler, reginfo, reqinfo, requests);                         \
  }
