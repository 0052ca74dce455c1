#pragma once
// Tarn::Fib::ForwardingStatus: one VRF's forwarding table, FEC id to FEC, as an entity whose
// reactors hear onFec(fecId) for each FEC that may have changed. Its file "fec" has the chunk file
// of the larger FECs beside it ("fec.chunks").
#include "platform/tarn/FibFec.h"
#include "platform/tarn/TableStatus.h"

namespace Tarn::Fib {

class ForwardingStatus : public TableStatus<ForwardingStatus, FecCodec> {
 public:
  class NotifieeConst : public Quor::Notifiee<ForwardingStatus> {
   public:
    virtual void onFec(const FecId&) {}
    virtual void onFecquorImmediate() {}
  };
  using FecMap = Map;
  static constexpr const char* typeName = "Tarn::Fib::ForwardingStatus";
  static constexpr const char* attributeName = "fec";
  static constexpr auto onKey = &NotifieeConst::onFec;
  static constexpr auto onAll = &NotifieeConst::onFecquorImmediate;

  using TableStatus::TableStatus;
  const FecMap& fec() const noexcept { return view(); }
};

}  // namespace Tarn::Fib
