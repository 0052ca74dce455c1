#include "sources/linux/Forwarding.h"

#include <fstream>

#include "platform/pelt/Netns.h"

namespace Sources::Linux {

namespace {

bool flagIsOn(const char* path) {
  std::ifstream file(path);
  int value = 0;
  return file >> value && value != 0;
}

Forwarding readHere() {
  return Forwarding{flagIsOn("/proc/sys/net/ipv4/ip_forward"), flagIsOn("/proc/sys/net/ipv6/conf/all/forwarding")};
}

}  // namespace

std::optional<Forwarding> readForwarding(const std::string& netns) {
  if (netns.empty()) return readHere();
  if (!Pelt::setNsByName(netns.c_str())) return std::nullopt;
  Forwarding forwarding = readHere();
  Pelt::setNsByName("default");
  return forwarding;
}

}  // namespace Sources::Linux
