// The kernel counter files. The first byte picks the IP version; for IPv4 the next four give the
// length of the /proc/net/snmp text and the rest is /proc/net/netstat, for IPv6 the rest is
// /proc/net/snmp6. The reader takes its paths from PROC_NET_* once per process, so they are pointed
// at files of this process before the first read, and each input rewrites the files.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "FuzzTargets.h"
#include "stats/SwFwdStats.h"

namespace {

// Where the reader finds its files, set before its first read.
struct CounterFiles {
  CounterFiles() {
    ::setenv("PROC_NET_SNMP", snmp.c_str(), 1);
    ::setenv("PROC_NET_NETSTAT", netstat.c_str(), 1);
    ::setenv("PROC_NET_SNMP6", snmp6.c_str(), 1);
  }
  const std::filesystem::path snmp = Fuzz::scratchDirectory() / "snmp";
  const std::filesystem::path netstat = Fuzz::scratchDirectory() / "netstat";
  const std::filesystem::path snmp6 = Fuzz::scratchDirectory() / "snmp6";
};

void write(const std::filesystem::path& path, const std::uint8_t* bytes, std::size_t size) {
  std::ofstream(path, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(bytes),
                                                                 static_cast<std::streamsize>(size));
}

}  // namespace

namespace Fuzz {

int procNet(const std::uint8_t* data, std::size_t size) {
  static const CounterFiles files;
  Input input(data, size);
  const bool ipv6 = input.byte() & 1;
  std::size_t taken;
  if (ipv6) {
    const std::uint8_t* text = input.take(input.left(), &taken);
    write(files.snmp6, text, taken);
  } else {
    const std::uint8_t* snmp = input.take(input.u32(), &taken);
    write(files.snmp, snmp, taken);
    const std::uint8_t* netstat = input.take(input.left(), &taken);
    write(files.netstat, netstat, taken);
  }
  const auto stats = Ip::swFwdStatsFactory(ipv6 ? Ip::ipVersion6 : Ip::ipVersion4, Quor::Name("default"));
  stats->doRead();
  // IPv4 leaves the octet counters alone: the netstat octet columns are not read.
  if (!ipv6)
    require(stats->data().inOctets() == 0 && stats->data().outOctets() == 0, "an IPv4 read set octet counters");
  return 0;
}

}  // namespace Fuzz
