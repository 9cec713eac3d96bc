// The bash completion script as bash runs it: COMP_WORDS/COMP_CWORD in, the
// candidates of COMPREPLY out, from the tree and from the host.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "support/harness.h"
#include "workflow/temp_dir_test.h"

namespace {

class CompletionTest : public TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    auto script = TestSupport::RunProcess({"--completion", "bash"});
    ASSERT_EQ(script.status, 0);
    std::ofstream(dir_ + "/toolbase.bash") << script.out;
    auto other = TestSupport::RunProcess({"--host-state", dir_ + "/other.json", "network",
                                          "vswitch", "standard", "add", "--vswitch-name",
                                          "vSwitch7"});
    ASSERT_EQ(other.status, 0) << other.err;
  }

  // Completes the last of `words` (the rest of the line before it) in bash;
  // one COMPREPLY entry a line. `line` is the line as typed (COMP_LINE, with
  // the cursor at its end) when bash would split it into more words than
  // blanks separate.
  std::string Complete(std::vector<std::string> const& words, std::string const& line = "",
                       std::string const& state = "") {
    std::ofstream driver(dir_ + "/driver.sh");
    driver << "source " << dir_ << "/toolbase.bash\n"
           << "export TOOLBASE_HOST_STATE=" << (state.empty() ? dir_ + "/state.json" : state)
           << "\n";
    if (!line.empty()) {
      driver << "COMP_LINE='" << TOOLBASE_EXECUTABLE << " " << line << "'\n"
             << "COMP_POINT=${#COMP_LINE}\n";
    }
    driver << "COMP_WORDS=(" << TOOLBASE_EXECUTABLE;
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

};

TEST_F(CompletionTest, OffersWordsParametersAndValues) {
  struct Case {
    std::vector<std::string> words;
    char const* candidates;
  };
  for (auto const& c : std::vector<Case>{
           {{""}, "help\nnetwork\n"},
           {{"help", "net"}, "network\n"},
           {{"--ver"}, "--version\n"},
           {{"--formatter", ""}, "csv\njson\nsimple\ntable\nxml\n"},
           {{"--completion", ""}, "bash\nzsh\n"},
           {{"network", "vs"}, "vswitch\n"},
           {{"network", "vswitch", "standard", "portgroup", "policy", "f"}, "failover\n"},
           {{"network", "nosuch", ""}, "\n"},
           {{"network", "vswitch", "standard", "portgroup", "set", "--"},
            "--dry-run\n--formatter\n--help\n--host\n--host-state\n--portgroup-name\n--vlan-id\n"},
           {{"network", "vswitch", "standard", "portgroup", "set", "-p", "x", "--"},
            "--dry-run\n--formatter\n--help\n--host\n--host-state\n--vlan-id\n"},
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

TEST_F(CompletionTest, CompletesInlineValuesAndValuesWithColons) {
  struct Case {
    std::vector<std::string> words;  // as bash splits them, at ':' and '=' too
    std::string line;
    char const* candidates;
  };
  for (auto const& c : std::vector<Case>{
           {{"network", "nic", "down", "--nic-name", "=", "ornic"},
            "network nic down --nic-name=ornic", "ornic0\nornic1\nornic2\nornic3\nornic4\n"},
           {{"network", "nic", "down", "--nic-name", "="}, "network nic down --nic-name=",
            "=ornic0\n=ornic1\n=ornic2\n=ornic3\n=ornic4\n"},
           {{"--formatter", "=", "j"}, "--formatter=j", "json\n"},
           {{"network", "ip", "hosts", "remove", "--ip", "2001", ":", "db8", ":"},
            "network ip hosts remove --ip 2001:db8:", ":10::99\n"},
           {{"network", "ip", "hosts", "remove", "--ip", "2001", ":", "d"},
            "network ip hosts remove --ip 2001:d", "db8:10::99\n"},
       }) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(Complete(c.words, c.line), c.candidates);
  }
}

TEST_F(CompletionTest, OnlyReadsTheHost) {
  // No state file yet: the default host's names, and still no file after.
  std::string fresh = dir_ + "/fresh";
  std::filesystem::create_directories(fresh);
  EXPECT_EQ(Complete({"network", "vswitch", "standard", "list", "--vswitch-name", ""}, "",
                     fresh + "/state.json"),
            "vSwitch0\nvSwitch1\n");
  EXPECT_TRUE(std::filesystem::is_empty(fresh)) << "completion created a file";
}

TEST_F(CompletionTest, DescribesEachCandidateForZsh) {
  auto words = TestSupport::RunProcess({"--complete", "--describe", "--", "network", "fire"});
  EXPECT_EQ(words.out, "firewall:A set of commands for firewall related operations\n");
  auto values = TestSupport::RunProcess(
      {"--complete", "--describe", "--", "--formatter=x"});
  EXPECT_EQ(values.out, "--formatter=xml\n");
  auto colons = TestSupport::RunProcess(
      {"--host-state", dir_ + "/other.json", "--complete", "--describe", "--", "network", "ip",
       "hosts", "remove", "--ip", "2001:"});
  EXPECT_EQ(colons.out, "2001\\:db8\\:10\\:\\:99\n");
  auto script = TestSupport::RunProcess({"--completion", "zsh"});
  EXPECT_NE(script.out.find("--complete --describe"), std::string::npos);
  EXPECT_NE(script.out.find("_describe"), std::string::npos);
}

}  // namespace
