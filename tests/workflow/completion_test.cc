// The bash completion script as bash runs it: COMP_WORDS/COMP_CWORD in, the
// candidates of COMPREPLY out, from the tree and from the host.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "support/harness.h"

namespace {

class CompletionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char dir_template[] = "/tmp/toolbase-complete-XXXXXX";
    ASSERT_NE(mkdtemp(dir_template), nullptr);
    dir_ = dir_template;
    auto script = TestSupport::RunProcess({"--completion", "bash"});
    ASSERT_EQ(script.status, 0);
    std::ofstream(dir_ + "/toolbase.bash") << script.out;
    auto other = TestSupport::RunProcess({"--host-state", dir_ + "/other.json", "network",
                                          "vswitch", "standard", "add", "--vswitch-name",
                                          "vSwitch7"});
    ASSERT_EQ(other.status, 0) << other.err;
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  // Completes the last of `words` (the rest of the line before it) in bash;
  // one COMPREPLY entry a line.
  std::string Complete(std::vector<std::string> const& words) {
    std::ofstream driver(dir_ + "/driver.sh");
    driver << "source " << dir_ << "/toolbase.bash\n"
           << "export TOOLBASE_HOST_STATE=" << dir_ << "/state.json\n"
           << "COMP_WORDS=(" << TOOLBASE_EXECUTABLE;
    for (auto const& word : words) {
      std::string quoted;
      for (char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
      driver << " '" << quoted << "'";
    }
    driver << ")\nCOMP_CWORD=" << words.size() << "\n_toolbase\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
    driver.close();
    std::string command = "bash " + dir_ + "/driver.sh";
    FILE* pipe = popen(command.c_str(), "r");
    std::string text;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) text.append(buffer, n);
    pclose(pipe);
    return text;
  }

  std::string dir_;
};

TEST_F(CompletionTest, OffersWordsParametersAndValues) {
  struct Case {
    std::vector<std::string> words;
    char const* candidates;
  };
  for (auto const& c : std::vector<Case>{
           {{""}, "network\n"},
           {{"--ver"}, "--version\n"},
           {{"--formatter", ""}, "csv\njson\nsimple\ntable\nxml\n"},
           {{"--completion", ""}, "bash\nzsh\n"},
           {{"network", "vs"}, "vswitch\n"},
           {{"network", "vswitch", "standard", "portgroup", "policy", "f"}, "failover\n"},
           {{"network", "nosuch", ""}, "\n"},
           {{"network", "vswitch", "standard", "portgroup", "set", "--"},
            "--formatter\n--help\n--portgroup-name\n--vlan-id\n"},
           {{"network", "vswitch", "standard", "portgroup", "set", "-p", "x", "--"},
            "--formatter\n--help\n--vlan-id\n"},
           {{"network", "firewall", "set", "--enabled", ""}, "false\ntrue\n"},
           {{"network", "ip", "interface", "ipv4", "set", "--type", ""}, "dhcp\nnone\nstatic\n"},
           {{"network", "nic", "down", "--nic-name", "ornic"},
            "ornic0\nornic1\nornic2\nornic3\nornic4\n"},
           {{"network", "vswitch", "standard", "portgroup", "add", "--vswitch-name", ""},
            "vSwitch0\nvSwitch1\n"},
           {{"network", "vswitch", "standard", "portgroup", "set", "-p", "V"}, "VM\\ Network\n"},
           {{"network", "vswitch", "standard", "portgroup", "set", "-p", "'S"},
            "'Storage Network'\n"},
           {{"network", "ip", "interface", "ipv4", "get", "--interface-name", ""}, "orvk0\n"},
           {{"network", "ip", "interface", "list", "--netstack", ""},
            "defaultTcpipStack\nlivehop\n"},
           {{"network", "nic", "list", "--formatter", "j"}, "json\n"},
           // The switches of the state file the line names, not the default one.
           {{"--host-state", dir_ + "/other.json", "network", "vswitch", "standard", "list",
             "--vswitch-name", "vSwitch"},
            "vSwitch0\nvSwitch1\nvSwitch7\n"},
       }) {
    std::string line;
    for (auto const& word : c.words) line += "[" + word + "]";
    SCOPED_TRACE(line);
    EXPECT_EQ(Complete(c.words), c.candidates);
  }
}

}  // namespace
