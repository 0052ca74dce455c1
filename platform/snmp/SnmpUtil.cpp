#include "platform/snmp/SnmpUtil.h"

namespace SnmpUtil {

namespace {

Quor::Ptr<Quor::Entity>& rootEntity() {
  static Quor::Ptr<Quor::Entity> entity;
  return entity;
}

}  // namespace

void rootIs(const Quor::Ptr<Quor::Entity>& root) { rootEntity() = root; }

const Quor::Ptr<Quor::Entity>& root() { return rootEntity(); }

Quor::Ptr<Quor::Entity> getEntityRelative(const char* path) {
  if (!rootEntity() || !path) return nullptr;
  return Quor::entityAtPath(rootEntity(), path);
}

Quor::String8 absolutePath(std::string_view path) {
  std::string text = rootEntity() ? rootEntity()->fullName().str() : std::string();
  text += '/';
  text += path;
  return Quor::String8(text);
}

}  // namespace SnmpUtil
