// ipsnmp-bench-probe: the SNMP client side of bench/run, for what snmpget cannot time finely enough.
//
//   ipsnmp-bench-probe [-c COMMUNITY | -n CONTEXT] [-t SECONDS] HOST watch OID [WALK-OID] [INTERVAL-MS]
//       GETs OID (and, with WALK-OID, the next GETBULK of 50 of a walk of that subtree, wrapping
//       round) every INTERVAL-MS (default 10) until SIGINT or SIGTERM, then prints one line:
//       "requests=N timeouts=N worst_ms=X p99_ms=X median_ms=X".
//   ipsnmp-bench-probe [-c COMMUNITY | -n CONTEXT] [-t SECONDS] HOST appear|gone OID LIMIT-S [COMMAND...]
//       runs COMMAND (if any), then GETs OID back to back until it has a value (appear) or has none
//       or gets no answer (gone), and prints "after_command_ms=X from_start_ms=X polls=N" (to the
//       answer that has the value, or to the sending of the request that found it gone); exits 1
//       when LIMIT-S seconds pass first.
//
//   ipsnmp-bench-probe [-c COMMUNITY | -n CONTEXT] [-t SECONDS] HOST compare get|getnext OID-A OID-B COUNT [PID]
//       sends COUNT GETs (or GETNEXTs) of each OID one after the other, in alternating blocks of ten so
//       that both meet the same moments of the machine, and prints "a_ms=X b_ms=X" (the median
//       response times) and, with the agent's PID, "a_cpu_us=X b_cpu_us=X": the agent's CPU time per
//       request from /proc/PID/schedstat, read at the ends of the blocks; exits 1 when one gets no
//       answer.
//
//   ipsnmp-bench-probe [-c COMMUNITY] [-t SECONDS] HOST held-writer TABLE-ROOT COUNT OCTET
//       opens the route table under TABLE-ROOT once, as a routing agent does, and puts COUNT + 1 new
//       routes 201.OCTET.i.0/24 (i < 256) through FEC 1 (next hop 10.0.0.2), each committed and then
//       polled until its ipCidrRouteDest cell answers: a GET for the first, then a GETNEXT from the
//       route before; prints "first_ms=X median_ms=X worst_ms=X", the first being the write right
//       after the writer took the file over.
//
// -c picks an SNMPv2c community (default "public"), -n a context through SNMPv3 user "ipsnmp" without
// authentication; -t is the time a request waits for its answer (default 5 s, no retries).
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "bench/HeldRouteWriter.h"

namespace {

using Clock = std::chrono::steady_clock;

volatile sig_atomic_t stopRequested = 0;

double msSince(Clock::time_point start) { return std::chrono::duration<double, std::milli>(Clock::now() - start).count(); }

struct Oid {
  oid ids[MAX_OID_LEN];
  size_t length = MAX_OID_LEN;
};

Oid parseOid(const char* text) {
  Oid o;
  if (!read_objid(text, o.ids, &o.length)) {
    std::fprintf(stderr, "ipsnmp-bench-probe: bad OID '%s'\n", text);
    std::exit(2);
  }
  return o;
}

// One open session; a request answered with a PDU gives its varbinds, a timeout gives none.
class Session {
 public:
  Session(const char* host, const std::string& community, const std::string& context, double timeout) {
    netsnmp_session setup;
    snmp_sess_init(&setup);
    setup.peername = const_cast<char*>(host);
    setup.timeout = long(timeout * 1e6);
    setup.retries = 0;
    if (context.empty()) {
      setup.version = SNMP_VERSION_2c;
      setup.community = reinterpret_cast<u_char*>(const_cast<char*>(community.c_str()));
      setup.community_len = community.size();
    } else {
      setup.version = SNMP_VERSION_3;
      setup.securityName = const_cast<char*>("ipsnmp");
      setup.securityNameLen = std::strlen(setup.securityName);
      setup.securityLevel = SNMP_SEC_LEVEL_NOAUTH;
      setup.contextName = const_cast<char*>(context.c_str());
      setup.contextNameLen = context.size();
    }
    session_ = snmp_open(&setup);
    if (!session_) {
      std::fprintf(stderr, "ipsnmp-bench-probe: cannot open a session to %s\n", host);
      std::exit(2);
    }
  }
  ~Session() { snmp_close(session_); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Sends `pdu`; null on a timeout or any failure to get an answer.
  netsnmp_pdu* ask(netsnmp_pdu* pdu) {
    netsnmp_pdu* response = nullptr;
    if (snmp_synch_response(session_, pdu, &response) != STAT_SUCCESS) {
      if (response) snmp_free_pdu(response);
      return nullptr;
    }
    return response;
  }

 private:
  netsnmp_session* session_;
};

bool hasValue(const netsnmp_pdu* response) {
  if (!response || response->errstat != SNMP_ERR_NOERROR || !response->variables) return false;
  const u_char type = response->variables->type;
  return type != SNMP_NOSUCHOBJECT && type != SNMP_NOSUCHINSTANCE && type != SNMP_ENDOFMIBVIEW;
}

netsnmp_pdu* getOf(const Oid& o) {
  netsnmp_pdu* pdu = snmp_pdu_create(SNMP_MSG_GET);
  snmp_add_null_var(pdu, o.ids, o.length);
  return pdu;
}

double quantile(std::vector<double> values, double q) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  return values[std::min(values.size() - 1, std::size_t(double(values.size()) * q))];
}

int watch(Session& session, const Oid& target, const Oid* walkRoot, double intervalMs) {
  std::vector<double> times;
  int timeouts = 0;
  Oid cursor = walkRoot ? *walkRoot : Oid{};
  auto timed = [&](netsnmp_pdu* pdu) {
    const Clock::time_point start = Clock::now();
    netsnmp_pdu* response = session.ask(pdu);
    times.push_back(msSince(start));
    timeouts += response == nullptr;
    return response;
  };
  while (!stopRequested) {
    if (netsnmp_pdu* response = timed(getOf(target))) snmp_free_pdu(response);
    if (walkRoot) {
      netsnmp_pdu* bulk = snmp_pdu_create(SNMP_MSG_GETBULK);
      bulk->non_repeaters = 0;
      bulk->max_repetitions = 50;
      snmp_add_null_var(bulk, cursor.ids, cursor.length);
      netsnmp_pdu* response = timed(bulk);
      cursor = *walkRoot;  // a failed or finished walk starts again
      if (response) {
        const netsnmp_variable_list* last = response->variables;
        while (last && last->next_variable) last = last->next_variable;
        if (last && last->name_length >= walkRoot->length &&
            snmp_oidtree_compare(walkRoot->ids, walkRoot->length, last->name, last->name_length) == 0 &&
            last->type != SNMP_ENDOFMIBVIEW) {
          std::copy(last->name, last->name + last->name_length, cursor.ids);
          cursor.length = last->name_length;
        }
        snmp_free_pdu(response);
      }
    }
    std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(intervalMs));
  }
  std::printf("requests=%zu timeouts=%d worst_ms=%.2f p99_ms=%.2f median_ms=%.2f\n", times.size(), timeouts,
              quantile(times, 1.0), quantile(times, 0.99), quantile(times, 0.5));
  return 0;
}

// The CPU time in microseconds that process `pid` has had, 0 without a pid.
double cpuMicros(const char* pid) {
  if (!pid) return 0;
  const std::string path = std::string("/proc/") + pid + "/schedstat";
  FILE* f = std::fopen(path.c_str(), "r");
  double ns = 0;
  if (f) {
    if (std::fscanf(f, "%lf", &ns) != 1) ns = 0;
    std::fclose(f);
  }
  return ns / 1e3;
}

int compareRequests(Session& session, int command, const Oid (&targets)[2], int count, const char* pid) {
  constexpr int block = 10;
  std::vector<double> times[2];
  double cpu[2] = {0, 0};
  for (int done = 0; done < count; done += block) {
    for (int which = 0; which < 2; ++which) {
      const double cpuBefore = cpuMicros(pid);
      for (int n = 0; n < block && done + n < count; ++n) {
        netsnmp_pdu* pdu = snmp_pdu_create(command);
        snmp_add_null_var(pdu, targets[which].ids, targets[which].length);
        const Clock::time_point start = Clock::now();
        netsnmp_pdu* response = session.ask(pdu);
        times[which].push_back(msSince(start));
        if (!response) {
          std::printf("a_ms=timeout b_ms=timeout\n");
          return 1;
        }
        snmp_free_pdu(response);
      }
      cpu[which] += cpuMicros(pid) - cpuBefore;
    }
  }
  std::printf("a_ms=%.3f b_ms=%.3f", quantile(times[0], 0.5), quantile(times[1], 0.5));
  if (pid) std::printf(" a_cpu_us=%.1f b_cpu_us=%.1f", cpu[0] / count, cpu[1] / count);
  std::printf("\n");
  return 0;
}

// Runs `argv` to its end; false when it fails.
bool run(char** argv) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::execvp(argv[0], argv);
    ::_exit(127);
  }
  int status = 0;
  return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int await(Session& session, const Oid& target, bool wantValue, double limitS, char** command) {
  const Clock::time_point start = Clock::now();
  if (*command && !run(command)) {
    std::fprintf(stderr, "ipsnmp-bench-probe: the command %s failed\n", command[0]);
    return 2;
  }
  const Clock::time_point written = Clock::now();
  for (long polls = 1;; ++polls) {
    const Clock::time_point sent = Clock::now();
    netsnmp_pdu* response = session.ask(getOf(target));
    const bool seen = hasValue(response) == wantValue;
    if (response) snmp_free_pdu(response);
    if (seen) {
      // Gone is often learnt from a request that gets no answer: it was gone when that was sent.
      const Clock::time_point at = wantValue ? Clock::now() : sent;
      const auto ms = [at](Clock::time_point from) { return std::chrono::duration<double, std::milli>(at - from).count(); };
      std::printf("after_command_ms=%.2f from_start_ms=%.2f polls=%ld\n", ms(written), ms(start), polls);
      return 0;
    }
    if (msSince(written) > limitS * 1e3) {
      std::printf("after_command_ms=timeout from_start_ms=timeout polls=%ld\n", polls);
      return 1;
    }
  }
}

// Polls `target` until it has a value; the milliseconds from `from`, or -1 after `limitS`.
double untilSeen(Session& session, const Oid& target, Clock::time_point from, double limitS) {
  while (msSince(from) < limitS * 1e3) {
    netsnmp_pdu* response = session.ask(getOf(target));
    const bool seen = hasValue(response);
    if (response) snmp_free_pdu(response);
    if (seen) return msSince(from);
  }
  return -1;
}

// Polls with a GETNEXT from `previous`, a row that exists, until the answer is `target`; the
// milliseconds from `from`, or -1 after `limitS`.
double untilNext(Session& session, const Oid& previous, const Oid& target, Clock::time_point from, double limitS) {
  while (msSince(from) < limitS * 1e3) {
    netsnmp_pdu* pdu = snmp_pdu_create(SNMP_MSG_GETNEXT);
    snmp_add_null_var(pdu, previous.ids, previous.length);
    netsnmp_pdu* response = session.ask(pdu);
    const bool seen = hasValue(response) &&
                      snmp_oid_compare(response->variables->name, response->variables->name_length, target.ids, target.length) == 0;
    if (response) snmp_free_pdu(response);
    if (seen) return msSince(from);
  }
  return -1;
}

int heldWriter(Session& session, const std::string& root, int count, int octet) {
  HeldRouteWriter writer(root);
  std::vector<double> times;
  double first = 0;
  Oid previous;
  for (int i = 0; i <= count; ++i) {
    const std::string dest = "201." + std::to_string(octet) + "." + std::to_string(i) + ".0";
    const Oid target = parseOid((".1.3.6.1.2.1.4.24.4.1.1." + dest + ".255.255.255.0.0.10.0.0.2").c_str());
    writer.put(dest + "/24", 1);
    const Clock::time_point written = Clock::now();
    const double ms = i == 0 ? untilSeen(session, target, written, 60) : untilNext(session, previous, target, written, 60);
    previous = target;
    if (ms < 0) {
      std::printf("first_ms=timeout median_ms=timeout worst_ms=timeout\n");
      return 1;
    }
    if (i == 0)
      first = ms;
    else
      times.push_back(ms);
  }
  std::printf("first_ms=%.2f median_ms=%.2f worst_ms=%.2f\n", first, quantile(times, 0.5), quantile(times, 1.0));
  return 0;
}

int usage() {
  std::fprintf(stderr,
               "usage: ipsnmp-bench-probe [-c COMMUNITY | -n CONTEXT] [-t SECONDS] HOST watch OID [WALK-OID] [INTERVAL-MS]\n"
               "       ipsnmp-bench-probe [-c COMMUNITY | -n CONTEXT] [-t SECONDS] HOST appear|gone OID LIMIT-S [COMMAND...]\n"
               "       ipsnmp-bench-probe [-c COMMUNITY | -n CONTEXT] [-t SECONDS] HOST compare get|getnext OID-A OID-B COUNT [PID]\n"
               "       ipsnmp-bench-probe [-c COMMUNITY] [-t SECONDS] HOST held-writer TABLE-ROOT COUNT OCTET\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  // First of all, so that a stop sent right after the start is not lost.
  struct sigaction stop {};
  stop.sa_handler = [](int) { stopRequested = 1; };
  ::sigaction(SIGINT, &stop, nullptr);
  ::sigaction(SIGTERM, &stop, nullptr);

  std::string community = "public", context;
  double timeout = 5;
  int i = 1;
  for (; i + 1 < argc && argv[i][0] == '-'; i += 2) {
    if (std::strcmp(argv[i], "-c") == 0)
      community = argv[i + 1];
    else if (std::strcmp(argv[i], "-n") == 0)
      context = argv[i + 1];
    else if (std::strcmp(argv[i], "-t") == 0)
      timeout = std::atof(argv[i + 1]);
    else
      return usage();
  }
  if (argc - i < 3) return usage();
  const char* host = argv[i];
  const std::string mode = argv[i + 1];

  ::setenv("MIBS", "", 1);  // numeric OIDs only: no MIB modules to read
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE, 1);
  init_snmp("ipsnmp-bench-probe");

  Session session(host, community, context, timeout);
  if (mode == "held-writer") {
    if (argc - i != 5) return usage();
    try {
      return heldWriter(session, argv[i + 2], std::atoi(argv[i + 3]), std::atoi(argv[i + 4]));
    } catch (const std::exception& e) {
      std::fprintf(stderr, "ipsnmp-bench-probe: %s\n", e.what());
      return 2;
    }
  }
  if (mode == "compare") {
    const std::string command = argv[i + 2];
    if (argc - i < 6 || argc - i > 7 || (command != "get" && command != "getnext")) return usage();
    const Oid targets[2] = {parseOid(argv[i + 3]), parseOid(argv[i + 4])};
    return compareRequests(session, command == "get" ? SNMP_MSG_GET : SNMP_MSG_GETNEXT, targets,
                           std::atoi(argv[i + 5]), argc - i == 7 ? argv[i + 6] : nullptr);
  }
  const Oid target = parseOid(argv[i + 2]);
  if (mode == "watch") {
    if (argc - i > 5) return usage();
    Oid walkRoot;
    if (argc - i > 3) walkRoot = parseOid(argv[i + 3]);
    return watch(session, target, argc - i > 3 ? &walkRoot : nullptr, argc - i > 4 ? std::atof(argv[i + 4]) : 10.0);
  }
  if ((mode == "appear" || mode == "gone") && argc - i >= 4)
    return await(session, target, mode == "appear", std::atof(argv[i + 3]), argv + i + 4);
  return usage();
}
