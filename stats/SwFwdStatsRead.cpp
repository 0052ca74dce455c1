// Reading the kernel's IP counters into an SwFwdStats.
//
// The two IP versions are read in two different ways, and both are deliberate:
// - IPv4 is positional. It trusts the column order of the "Ip:" lines of /proc/net/snmp and of the
//   second "IpExt:" line of /proc/net/netstat, inside the VRF's network namespace. The only guard
//   against a changed layout is the length of the snmp header line, which must be one of the known
//   ones; any other length leaves the record as it was. The netstat octet columns are not read, so
//   the IPv4 octet counters stay zero.
// - IPv6 is by name. Each line of /proc/net/snmp6 is a name and a value, and the name finds its
//   Counter through the perfect hash. It never enters a namespace: it reads the files of the
//   namespace the process is in, which is right for the one IPv6 entity, that of the default VRF.
// Every read starts from the held record and overwrites what it finds with the kernel's absolute
// value. A file that does not open leaves the record as it was; a value that is not a number ends
// the parse, and what was parsed until then is committed.
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "platform/quor/Clock.h"
#include "platform/quor/Trace.h"
#include "stats/Counter.h"
#include "stats/SwFwdStats.h"

namespace Ip {

namespace {

const Quor::Tracer tracer("IpSwFwdStats", "IpSwFwdStats");

// The path of a counter file: the environment variable's value if set, else the kernel's file.
// Looked up once per process; a later change of the environment has no effect.
std::string pathOf(const char* variable, const char* kernelPath) {
  const char* path = std::getenv(variable);
  return path ? path : kernelPath;
}

const std::string& snmpPath() {
  static const std::string path = pathOf("PROC_NET_SNMP", "/proc/net/snmp");
  return path;
}

const std::string& netstatPath() {
  static const std::string path = pathOf("PROC_NET_NETSTAT", "/proc/net/netstat");
  return path;
}

const std::string& snmp6Path() {
  static const std::string path = pathOf("PROC_NET_SNMP6", "/proc/net/snmp6");
  return path;
}

// Lengths, newline included, of the kernel's "Ip:" header lines whose first 20 columns are those
// read below: 224 up to FragCreates, and 237 with OutTransmits behind it (Linux 6.3 and later).
bool knownSnmpHeaderLength(std::streamsize length) { return length == 224 || length == 237; }

using Setter = void (SwFwdStatsData::*)(U64) noexcept;

// The 17 columns of the "Ip:" values line that are kept, behind the tag, Forwarding and DefaultTTL.
constexpr Setter snmpColumns[] = {
    &SwFwdStatsData::inReceivesIs,   &SwFwdStatsData::inHdrErrorsIs,     &SwFwdStatsData::inAddrErrorsIs,
    &SwFwdStatsData::forwDatagramsIs, &SwFwdStatsData::inUnknownProtosIs, &SwFwdStatsData::inDiscardsIs,
    &SwFwdStatsData::inDeliversIs,   &SwFwdStatsData::outRequestsIs,     &SwFwdStatsData::outDiscardsIs,
    &SwFwdStatsData::outNoRoutesIs,  &SwFwdStatsData::reasmTimeoutIs,    &SwFwdStatsData::reasmReqdsIs,
    &SwFwdStatsData::reasmOKsIs,     &SwFwdStatsData::reasmFailsIs,      &SwFwdStatsData::fragOKsIs,
    &SwFwdStatsData::fragFailsIs,    &SwFwdStatsData::fragCreatesIs,
};

// The first six columns of the "IpExt:" values line; the columns behind them are not read.
constexpr Setter netstatColumns[] = {
    &SwFwdStatsData::inNoRoutesIs,   &SwFwdStatsData::inTruncatedPktsIs, &SwFwdStatsData::inMcastPktsIs,
    &SwFwdStatsData::outMcastPktsIs, &SwFwdStatsData::inBcastPktsIs,     &SwFwdStatsData::outBcastPktsIs,
};

// Stores the next numbers of `in` into `columns` of `data`. The stream's numeric extraction skips
// white space and is never checked: one variable serves all columns, so behind a line cut short
// at the end of the file every further column receives the last good number.
template <std::size_t N>
void readColumns(std::istream& in, const Setter (&columns)[N], SwFwdStatsData& data) {
  U64 value = 0;
  for (Setter column : columns) {
    in >> value;
    (data.*column)(value);
  }
}

// Leaves `netstat` just behind the tag of the second "IpExt:" line, the values line; false when
// the stream fails first. The first "IpExt:" line is the header and is not inspected. A line's
// first word is read up to a blank, at most 9 characters, and must be exactly the tag.
bool seekIpExtValues(std::istream& netstat) {
  bool headerSeen = false;
  for (;;) {
    char word[10] = {};
    netstat.get(word, sizeof word, ' ');
    if (std::strcmp(word, "IpExt:") == 0) {
      if (headerSeen) return true;
      headerSeen = true;
    }
    netstat.ignore(4096, '\n');
    if (netstat.fail()) return false;
  }
}

// Holds the VRF's network namespace for the length of the IPv4 read and leaves it on every way
// out. The default VRF is read where the process is, with no switch at all.
class VrfNamespaceVisit {
 public:
  explicit VrfNamespaceVisit(const SwFwdStats& stats) : stats_(stats), switched_(!(stats.vrfName() == "default")) {
    if (switched_) stats_.setNs(stats_.vrfName());
  }
  ~VrfNamespaceVisit() {
    if (switched_) stats_.setNs(Quor::Name("default"));
  }
  VrfNamespaceVisit(const VrfNamespaceVisit&) = delete;
  VrfNamespaceVisit& operator=(const VrfNamespaceVisit&) = delete;

 private:
  const SwFwdStats& stats_;
  const bool switched_;
};

}  // namespace

void SwFwdStats::doRead() const {
  if (ipVersion_ == ipVersion4) {
    ++reads_;
    readIpv4();
  } else if (ipVersion_ == ipVersion6) {
    ++reads_;
    readIpv6();
  }
}

void SwFwdStats::readIpv4() const {
  std::ifstream snmp;
  std::ifstream netstat;
  // Made after the files, so it leaves the namespace before they close.
  const VrfNamespaceVisit visit(*this);
  snmp.open(snmpPath());
  if (!snmp.is_open()) {
    QTRACE(tracer, 0, "Failed to open " << snmpPath());
    return;
  }
  SwFwdStatsData data = data_;
  snmp.ignore(1024, '\n');
  if (!knownSnmpHeaderLength(snmp.gcount())) {
    QTRACE(tracer, 0, "Header is " << snmp.gcount());
    return;
  }
  for (int field = 0; field < 3; ++field) snmp.ignore(100, ' ');
  readColumns(snmp, snmpColumns, data);

  netstat.open(netstatPath());
  if (!netstat.is_open()) {
    QTRACE(tracer, 0, "Failed to open " << netstatPath());
    return;
  }
  if (seekIpExtValues(netstat)) readColumns(netstat, netstatColumns, data);
  dataIs(data);
  lastUpdateIs(Quor::now());
}

void SwFwdStats::readIpv6() const {
  std::ifstream snmp6(snmp6Path());
  if (!snmp6.is_open()) {
    QTRACE(tracer, 0, "Failed to open " << snmp6Path());
    return;
  }
  SwFwdStatsData data = data_;
  // A line is a name padded with blanks, a tab and the value. Only a blank ends the name. The last
  // pass, at the end of the file, finds an empty name and no counter.
  while (!snmp6.fail()) {
    char stat[80] = {};
    U64 value = 0;
    snmp6.get(stat, sizeof stat, ' ');
    snmp6 >> value;
    snmp6.ignore(1);
    QTRACE(tracer, 1, "stat is " << stat << ", value is " << value);
    const Counter* found = counter(stat, static_cast<unsigned int>(std::strlen(stat)));
    if (!found) {
      QTRACE(tracer, 8, "no counter found for stat string " << stat);
      continue;
    }
    QTRACE(tracer, 8, "setting " << found->name() << " (counter for stat string " << stat << ") to " << value);
    found->write(data, value);
  }
  dataIs(data);
  lastUpdateIs(Quor::now());
}

}  // namespace Ip
