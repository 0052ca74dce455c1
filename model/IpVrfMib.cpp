#include "model/IpVrfMib.h"

#include "model/Reinstantiation.h"

namespace IpSnmp {

namespace {
constexpr std::string_view attributeNames[] = {"vrfTable", "vrfIfTable"};
constexpr Quor::AttributeId vrfTableAttr = Quor::Entity::firstAttributeId;
constexpr Quor::AttributeId vrfIfTableAttr = vrfTableAttr + 1;
}  // namespace

Quor::String8 IpVrfMib::attributeString(Quor::AttributeId id) const { return attributeNameOf(attributeNames, id); }

Quor::ValidPtr<VrfTableEntry> IpVrfMib::vrfTableIs(const Snmp::String& name,
                                                   const Quor::Ptr<const Ip::VrfConfig>& vrfConfig,
                                                   const Quor::Ptr<const Ip::VrfStatusLocal>& vrfStatusLocal) {
  if (VrfTableEntry* row = vrfTable_.member(name)) {
    checkConstructorParameter("_vrfConfig", vrfConfig, row->vrfConfig());
    checkConstructorParameter("_vrfStatusLocal", vrfStatusLocal, row->vrfStatusLocal());
    return row;
  }
  auto row = Quor::makePtr<VrfTableEntry>(name, vrfConfig, vrfStatusLocal);
  vrfTable_.memberIs(row);
  vrfTableNotify(name);
  return row;
}

Quor::Ptr<VrfTableEntry> IpVrfMib::vrfTableDel(const Snmp::String& name) {
  Quor::Ptr<VrfTableEntry> row = vrfTable_.deleteMember(name);
  if (row) vrfTableNotify(name);
  return row;
}

Quor::ValidPtr<VrfIfTableEntry> IpVrfMib::vrfIfTableIs(U32 ifIndex) {
  if (VrfIfTableEntry* row = vrfIfTable_.member(ifIndex)) return row;
  auto row = Quor::makePtr<VrfIfTableEntry>(ifIndex);
  vrfIfTable_.memberIs(row);
  vrfIfTableNotify(ifIndex);
  return row;
}

Quor::Ptr<VrfIfTableEntry> IpVrfMib::vrfIfTableDel(U32 ifIndex) {
  Quor::Ptr<VrfIfTableEntry> row = vrfIfTable_.deleteMember(ifIndex);
  if (row) vrfIfTableNotify(ifIndex);
  return row;
}

void IpVrfMib::vrfTableNotify(const Snmp::String& name) const {
  notify<NotifieeConst>(vrfTableAttr, [&](NotifieeConst& n) { n.onVrfTable(name); });
}

void IpVrfMib::vrfIfTableNotify(U32 ifIndex) const {
  notify<NotifieeConst>(vrfIfTableAttr, [&](NotifieeConst& n) { n.onVrfIfTable(ifIndex); });
}

}  // namespace IpSnmp
