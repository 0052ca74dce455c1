// The command-line writer, run as an operator runs it: bad input is refused whole, before anything
// is written, with a message naming the word at fault. (What it writes, the agent serves: the
// integration tests write their tables with it.)
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "tests/unit/tarn/TableFixture.h"

namespace {

struct ToolRun {
  int status;
  std::string output;  // stdout and stderr
};

class TarnTool : public TarnTest::TableDir {
 protected:
  ToolRun tool(const std::string& arguments) {
    std::string command = std::string(IPSNMP_TARN_TOOL) + " --root " + path("root") + " " + arguments + " 2>&1";
    ToolRun run{-1, ""};
    FILE* pipe = ::popen(command.c_str(), "r");
    std::array<char, 256> buffer;
    while (std::fgets(buffer.data(), buffer.size(), pipe)) run.output += buffer.data();
    int status = ::pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
  }
};

TEST_F(TarnTool, BadInputIsNamedAndNothingIsWritten) {
  const std::pair<const char*, const char*> refusals[] = {
      {"route put 10.0.0.0/33 1", "bad prefix '10.0.0.0/33'"},
      {"fec put 1 10.0.0.1", "bad via '10.0.0.1' (HOP@INTERFACE)"},
      {"arp put 0 Ethernet1 10.0.0.1 00:1c:73:00:00", "bad MAC address '00:1c:73:00:00'"},
      {"arp put -1 Ethernet1 10.0.0.1 00:1c:73:00:00:01", "bad VRF id '-1' (a number up to 4294967294)"},
      {"vrf put 3", "usage: vrf put VRF-ID NAME | vrf del VRF-ID"},
      {"mpls put 3", "unknown table 'mpls' (route, fec, arp, vrf)"},
  };
  for (const auto& [command, message] : refusals) {
    const ToolRun run = tool(command);
    EXPECT_EQ(run.status, 2) << command;
    EXPECT_EQ(run.output, std::string("ipsnmp-tarn: command: ") + message + "\n");
  }
  EXPECT_NE(tool("").output.find("usage: ipsnmp-tarn"), std::string::npos);
  std::ofstream(path("commands")) << "# two routes\nroute put 10.0.0.0/8 1\n\nroute put 10.1.0.0/16 x\n";
  const ToolRun file = tool("-f " + path("commands"));
  EXPECT_EQ(file.status, 2);
  EXPECT_EQ(file.output, "ipsnmp-tarn: " + path("commands") + ":4: bad FEC id 'x' (a number up to 18446744073709551615)\n");
  EXPECT_FALSE(std::filesystem::exists(path("root"))) << "the good line before the bad one was written";
}

}  // namespace
