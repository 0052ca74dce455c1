#pragma once
// A table as the test knows it must be served: its cells as the tools print them, from which follows
// the walk, in OID order across every column boundary.
#include <map>
#include <string>
#include <vector>

#include "SnmpTools.h"

namespace IntegrationTest {

using OidParts = std::vector<unsigned long>;

// ".1.3.6.1" as numbers.
OidParts oidParts(const std::string& oid);
// The dotted form of an IPv4 or IPv6 address's bytes as an index: "10.0.1.1", or "16.32.1..." with
// the length first when `withLength`.
std::string addressIndex(const std::string& address, bool withLength);
// The address with its host bits cleared, as text.
std::string subnetOf(const std::string& address, unsigned prefixLength);
// The IPv4 netmask of a prefix length: "255.255.255.0".
std::string ipv4Mask(unsigned prefixLength);

class ExpectedTable {
 public:
  // `root` is the table object (".1.3.6.1.2.1.4.20").
  explicit ExpectedTable(std::string root);

  // The cell of `column` in the row with `index` (".10.0.1.1").
  void cellIs(unsigned column, const std::string& index, const std::string& type, const std::string& value);

  const std::string& root() const noexcept { return root_; }
  // Every cell, in the order of a walk.
  std::vector<Varbind> walk() const;

 private:
  std::string root_;
  std::map<OidParts, Varbind> cells_;
};

// "OID = TYPE: VALUE" per varbind, so that a difference shows at a glance in a failure.
std::vector<std::string> linesOf(const std::vector<Varbind>& varbinds);
std::string lineOf(const Varbind& varbind);

}  // namespace IntegrationTest
