#pragma once
// The reactor by which a machine holds the container that it writes. It has no handlers: it follows
// the container so that the machine stands among the container's notifiees like any other input,
// and keeps the writable pointer that a notifiee's own, const, one is not.
#include "platform/quor/Entity.h"

namespace IpSnmp {

template <class Table>
class QuorOutputTable final : public Table::NotifieeConst {
 public:
  explicit QuorOutputTable(const Quor::Ptr<Table>& table) : table_(table) { this->notifierIs(table); }
  const Quor::Ptr<Table>& table() const noexcept { return table_; }

 private:
  const Quor::Ptr<Table> table_;
};

}  // namespace IpSnmp
