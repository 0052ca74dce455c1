#include "ExpectedTable.h"

#include <arpa/inet.h>

#include <sstream>
#include <stdexcept>

namespace IntegrationTest {

namespace {

std::vector<unsigned char> addressBytes(const std::string& address) {
  std::vector<unsigned char> bytes(address.find(':') == std::string::npos ? 4 : 16);
  const int family = bytes.size() == 4 ? AF_INET : AF_INET6;
  if (::inet_pton(family, address.c_str(), bytes.data()) != 1) throw std::invalid_argument("address " + address);
  return bytes;
}

std::string textOf(const std::vector<unsigned char>& bytes) {
  char text[INET6_ADDRSTRLEN];
  ::inet_ntop(bytes.size() == 4 ? AF_INET : AF_INET6, bytes.data(), text, sizeof text);
  return text;
}

}  // namespace

OidParts oidParts(const std::string& oid) {
  OidParts parts;
  std::istringstream in(oid);
  for (std::string part; std::getline(in, part, '.');)
    if (!part.empty()) parts.push_back(std::stoul(part));
  return parts;
}

std::string addressIndex(const std::string& address, bool withLength) {
  const std::vector<unsigned char> bytes = addressBytes(address);
  std::string index = withLength ? std::to_string(bytes.size()) : "";
  for (unsigned char b : bytes) index += (index.empty() ? "" : ".") + std::to_string(b);
  return index;
}

std::string subnetOf(const std::string& address, unsigned prefixLength) {
  std::vector<unsigned char> bytes = addressBytes(address);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const unsigned kept = prefixLength > 8 * i ? prefixLength - 8 * i : 0;
    if (kept < 8) bytes[i] &= static_cast<unsigned char>(0xff00u >> kept);
  }
  return textOf(bytes);
}

std::string ipv4Mask(unsigned prefixLength) { return subnetOf("255.255.255.255", prefixLength); }

ExpectedTable::ExpectedTable(std::string root) : root_(std::move(root)) {}

void ExpectedTable::cellIs(unsigned column, const std::string& index, const std::string& type,
                           const std::string& value) {
  const std::string oid = root_ + ".1." + std::to_string(column) + index;
  cells_[oidParts(oid)] = Varbind{oid, type, value};
}

std::vector<Varbind> ExpectedTable::walk() const {
  std::vector<Varbind> cells;
  for (const auto& [name, cell] : cells_) cells.push_back(cell);
  return cells;
}

std::string lineOf(const Varbind& varbind) {
  return varbind.oid + " = " + varbind.type + (varbind.value.empty() ? "" : ": " + varbind.value);
}

std::vector<std::string> linesOf(const std::vector<Varbind>& varbinds) {
  std::vector<std::string> lines;
  for (const Varbind& vb : varbinds) lines.push_back(lineOf(vb));
  return lines;
}

}  // namespace IntegrationTest
