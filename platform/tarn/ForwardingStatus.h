#pragma once
// Tarn::Fib::ForwardingStatus and Tarn::Fib::Forwarding6Status: one VRF's IPv4 or IPv6 forwarding
// table, FEC id to FEC, as an entity whose reactors hear onFec(fecId) for each FEC that may have
// changed. Its file "fec" has the chunk file of the larger FECs beside it ("fec.chunks").
#include "platform/tarn/FibFec.h"
#include "platform/tarn/TableStatus.h"

namespace Tarn::Fib {

template <class Codec>
class BasicForwardingStatus : public TableStatus<BasicForwardingStatus<Codec>, Codec> {
 public:
  class NotifieeConst : public Quor::Notifiee<BasicForwardingStatus> {
   public:
    virtual void onFec(const FecId&) {}
    virtual void onFecquorImmediate() {}
  };
  using FecMap = typename TableStatus<BasicForwardingStatus, Codec>::Map;
  static constexpr const char* typeName = Codec::statusType;
  static constexpr const char* attributeName = "fec";
  static constexpr auto onKey = &NotifieeConst::onFec;
  static constexpr auto onAll = &NotifieeConst::onFecquorImmediate;

  using TableStatus<BasicForwardingStatus, Codec>::TableStatus;
  const FecMap& fec() const noexcept { return this->view(); }
};

using ForwardingStatus = BasicForwardingStatus<FecCodec>;
using Forwarding6Status = BasicForwardingStatus<Fec6Codec>;

}  // namespace Tarn::Fib
