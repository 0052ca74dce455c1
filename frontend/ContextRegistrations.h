#pragma once
// What one registration unit has registered in each VRF's context, so that unregister_<Unit> can take
// it away again.
//
// The default context ("") is entered in neither map: its objects stay for the life of the process.
// A registration that the agent refuses (a second one of the same object in the same context, say)
// has already been freed by the agent and is not kept: unregistering it would touch freed memory.
#include <cstddef>
#include <map>
#include <vector>

#include "platform/quor/String.h"
#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"

class ContextRegistrations {
 public:
  using Registrations = std::vector<netsnmp_handler_registration*>;
  using ColumnInfos = std::vector<netsnmp_column_info*>;

  // `unitName` names the unit in the trace of unregisterContext ("IpBase").
  ContextRegistrations(const char* unitName, const Quor::Tracer& tracer);

  // Registers the scalar `reg` with the agent, which owns it from now on, and keeps it when it lies in
  // a VRF's context and the agent took it.
  void scalarIs(const Quor::String8& context, netsnmp_handler_registration* reg);
  // Keeps a registration that the caller has registered with the agent, in a VRF's context.
  void registrationIs(const Quor::String8& context, netsnmp_handler_registration* reg);
  // Keeps the column list of a table registered in a VRF's context; unregisterContext frees it.
  void columnInfoIs(const Quor::String8& context, netsnmp_column_info* info);

  // The work of unregister_<Unit>: unregisters the context's registrations, first to last, and frees
  // its column lists. A context never registered, the default one among them, is left as it is.
  void unregisterContext(const Quor::String8& context);

  // What is kept for `context`; empty when nothing is.
  const Registrations& handlerRegistrations(const Quor::String8& context) const;
  const ColumnInfos& columnInfos(const Quor::String8& context) const;
  std::size_t contexts() const noexcept { return handlerRegistrationsByContext.size(); }

 private:
  const char* unitName_;
  const Quor::Tracer& tracer_;
  std::map<Quor::String8, Registrations> handlerRegistrationsByContext;
  std::map<Quor::String8, ColumnInfos> columnInfosByContext;
};
