// ipsnmp-linux-tables: the table writer of the Linux source (see TableMirror.h), started and kept
// running by the agent's LinuxSource.
//
//   ipsnmp-linux-tables [--parent PID] [--netns-dir DIR] [--trace SPEC]
//
// The tables go under $TARN_ROOT (else /dev/shm/tarn). With --parent the writer ends when that
// process ends. Traces ("Linux:0-1" unless --trace says otherwise) go to stderr, the agent's.
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "platform/quor/Clock.h"
#include "platform/quor/Trace.h"
#include "platform/tarn/Util.h"
#include "sources/linux/TableMirror.h"

int main(int argc, char** argv) {
  pid_t parent = 0;
  std::string netnsDir = "/var/run/netns";
  std::string trace = "Linux:0-1";
  for (int i = 1; i + 1 < argc; i += 2) {
    std::string option = argv[i];
    if (option == "--parent") {
      parent = static_cast<pid_t>(std::atol(argv[i + 1]));
    } else if (option == "--netns-dir") {
      netnsDir = argv[i + 1];
    } else if (option == "--trace") {
      trace = argv[i + 1];
    } else {
      std::cerr << "usage: ipsnmp-linux-tables [--parent PID] [--netns-dir DIR] [--trace SPEC]\n";
      return 2;
    }
  }
  if (parent > 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) return 0;  // the parent died before the request took hold
  }
  try {
    Quor::traceConfigure(trace);
    Sources::Linux::TableMirror mirror(Tarn::RootPath(), netnsDir);
    while (true) Quor::activityManager()->runOnce(1.0);
  } catch (const std::exception& e) {
    std::cerr << "ipsnmp-linux-tables: " << e.what() << '\n';
    return 1;
  }
}
