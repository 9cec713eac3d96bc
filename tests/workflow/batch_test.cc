// Batches through the toolbase executable: all or nothing against the state
// file, the same end state as the lines run one by one, keep-going mode, the
// JSON and XML documents, dry runs, and the splitting of lines into words.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "batch.h"
#include "support/harness.h"
#include "workflow/temp_dir_test.h"

namespace {

using TestSupport::RunProcess;
using TestSupport::RunResult;

// Builds a switch with an uplink, a port group with a VLAN and a failover
// order, an interface on it with a static address, and a route through it.
const std::vector<std::string> kBuildLines = {
    "# a new switch for the backend",
    "network vswitch standard add --vswitch-name vSwitch2",
    "network vswitch standard uplink add --vswitch-name vSwitch2 --uplink-name ornic4",
    "",
    "network vswitch standard portgroup add --vswitch-name vSwitch2 --portgroup-name 'Backend Net'",
    "network vswitch standard portgroup set -p \"Backend Net\" --vlan-id 30",
    "network vswitch standard portgroup policy failover set -p Backend\\ Net \\",
    "    --active-uplinks ornic4",
    "network ip interface add --interface-name orvk1 --portgroup-name 'Backend Net'",
    "network ip interface ipv4 set -i orvk1 --type static --ipv4 10.30.0.5 --netmask 255.255.255.0",
    "network ip route ipv4 add --network 10.60.0.0/16 --gateway 10.30.0.1",
};

class BatchTest : public TempDirTest {
 protected:
  std::string State(std::string const& name) const { return dir_ + "/" + name + ".json"; }

  // A state file seeded with the default host.
  std::string Seeded(std::string const& name) const {
    std::string path = State(name);
    EXPECT_EQ(RunLine("network firewall get", path).status, 0);
    return path;
  }

  std::string WriteBatch(std::vector<std::string> const& lines) {
    std::string path = dir_ + "/batch" + std::to_string(++batches_) + ".txt";
    std::ofstream file(path);
    for (auto const& line : lines) file << line << '\n';
    return path;
  }

  static RunResult RunLine(std::string const& line, std::string const& state) {
    std::vector<std::string> words;
    EXPECT_TRUE(Toolbase::Cli::SplitWords(line, words));
    words.insert(words.begin(), {"--host-state", state});
    return RunProcess(words);
  }

  static std::string Text(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  int batches_ = 0;
};

TEST_F(BatchTest, FailingLastLineLeavesTheStateFileUntouched) {
  struct Case {
    char const* name;
    std::string bad_line;
    int status;
    char const* message;
  };
  for (auto const& c : std::vector<Case>{
           {"command error", "network vswitch standard add --vswitch-name vSwitch2", 1, ""},
           {"usage error", "network vswitch standard frobnicate", 2, "Unknown word 'frobnicate'"},
           {"open quote", "network vswitch standard list --vswitch-name 'vSwitch2", 2,
            "unterminated quote"},
       }) {
    SCOPED_TRACE(c.name);
    std::string state = Seeded(c.name);
    std::string before = Text(state);
    auto lines = kBuildLines;
    lines.push_back(c.bad_line);
    auto result = RunProcess({"--host-state", state, "--batch", WriteBatch(lines)});
    EXPECT_EQ(result.status, c.status);
    EXPECT_NE(result.err.find(c.message), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("batch line 12 failed; no change of the batch was applied"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(Text(state), before);
  }
}

TEST_F(BatchTest, SucceedingBatchEqualsTheLinesRunOneByOne) {
  std::string batched = Seeded("batched");
  std::string by_line = Seeded("by-line");
  auto result = RunProcess({"--host-state", batched, "--batch", WriteBatch(kBuildLines)});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");

  std::string pending;
  std::string outputs;
  for (auto const& line : kBuildLines) {
    pending += line;
    std::vector<std::string> words;
    if (!Toolbase::Cli::SplitWords(pending, words)) {
      pending += '\n';
      continue;
    }
    pending.clear();
    if (words.empty()) continue;
    words.insert(words.begin(), {"--host-state", by_line});
    auto one = RunProcess(words);
    ASSERT_EQ(one.status, 0) << line << ": " << one.err;
    outputs += one.out;
  }
  EXPECT_EQ(result.out, outputs);
  EXPECT_EQ(Text(batched), Text(by_line));
  auto list = RunLine("network vswitch standard portgroup list", batched);
  EXPECT_NE(list.out.find("Backend Net"), std::string::npos) << list.out;
}

TEST_F(BatchTest, ContinueKeepsTheLinesThatSucceed) {
  std::string state = Seeded("continue");
  auto result = RunProcess({"--host-state", state, "--batch-continue", "--batch",
                            WriteBatch({
                                "network vswitch standard add --vswitch-name vSwitch2",
                                "network vswitch standard add --vswitch-name vSwitch2",
                                "network vswitch standard bogus",
                                "network vswitch standard add --vswitch-name vSwitch3",
                            })});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("batch line 2 failed; its changes were not applied"),
            std::string::npos);
  EXPECT_NE(result.err.find("batch line 3 failed"), std::string::npos);
  auto list = RunLine("--formatter json network vswitch standard list", state);
  auto switches = nlohmann::json::parse(list.out);
  std::vector<std::string> names;
  for (auto const& entry : switches) names.push_back(entry["Name"]);
  EXPECT_EQ(names, (std::vector<std::string>{"vSwitch0", "vSwitch1", "vSwitch2", "vSwitch3"}));
}

TEST_F(BatchTest, JsonPrintsOneArrayWithAnElementPerLine) {
  std::string state = Seeded("json");
  auto result = RunProcess({"--host-state", state, "--formatter", "json", "--batch",
                            WriteBatch({"network firewall get",
                                        "network vswitch standard add --vswitch-name vSwitch2",
                                        "# a line's own formatter cannot break the document",
                                        "network vswitch standard list --formatter table"})});
  ASSERT_EQ(result.status, 0) << result.err;
  auto array = nlohmann::json::parse(result.out);
  ASSERT_TRUE(array.is_array());
  ASSERT_EQ(array.size(), 3u);
  EXPECT_EQ(array[0]["line"], 1);
  EXPECT_EQ(array[0]["command"], "network firewall get");
  EXPECT_EQ(array[0]["status"], 0);
  EXPECT_EQ(array[0]["applied"], true);
  EXPECT_EQ(array[0]["messages"], nlohmann::json::array());
  EXPECT_EQ(array[0]["result"],
            nlohmann::json::parse(RunLine("--formatter json network firewall get", state).out));
  EXPECT_EQ(array[1]["result"], true);
  EXPECT_EQ(array[2]["line"], 4);
  EXPECT_EQ(array[2]["result"], nlohmann::json::parse(
                                    RunLine("--formatter json network vswitch standard list", state)
                                        .out));
}

TEST_F(BatchTest, FailedBatchSaysNothingWasApplied) {
  std::vector<std::string> const lines = {
      "network vswitch standard add --vswitch-name vSwitch2",
      "network vswitch standard add --vswitch-name vSwitch2",
  };
  struct Case {
    char const* formatter;
    char const* applied_text;  // what must not be printed
  };
  for (auto const& c : std::vector<Case>{{"json", "\"applied\": true"},
                                         {"xml", "applied=\"true\""},
                                         {"simple", "true"},
                                         {"csv", "true"}}) {
    SCOPED_TRACE(c.formatter);
    std::string state = Seeded(std::string("failed-") + c.formatter);
    std::string before = Text(state);
    auto result = RunProcess(
        {"--host-state", state, "--formatter", c.formatter, "--batch", WriteBatch(lines)});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(Text(state), before);
    EXPECT_EQ(result.out.find(c.applied_text), std::string::npos) << result.out;
    if (std::string(c.formatter) == "json") {
      auto array = nlohmann::json::parse(result.out);
      ASSERT_EQ(array.size(), 2u);
      EXPECT_EQ(array[0]["status"], 0);
      EXPECT_EQ(array[0]["applied"], false);
      EXPECT_EQ(array[1]["status"], 1);
      EXPECT_EQ(array[1]["result"], nullptr);
      ASSERT_EQ(array[1]["messages"].size(), 1u);
      EXPECT_NE(array[1]["messages"][0].get<std::string>().find("vSwitch2"), std::string::npos);
    } else if (std::string(c.formatter) == "xml") {
      EXPECT_EQ(result.out.rfind("<?xml", 0), 0u);
      EXPECT_EQ(result.out.find("<?xml", 1), std::string::npos) << "one document";
      EXPECT_NE(result.out.find("<line number=\"2\" command=\"network vswitch standard add "
                                "--vswitch-name vSwitch2\" status=\"1\" applied=\"false\">"),
                std::string::npos)
          << result.out;
    } else {
      EXPECT_EQ(result.out, "false\n");
    }
  }
}

TEST_F(BatchTest, XmlPrintsOneDocument) {
  std::string state = Seeded("xml");
  auto result = RunProcess({"--host-state", state, "--formatter", "xml", "--batch",
                            WriteBatch({"network firewall get", "network firewall get",
                                        "network firewall get --formatter json"})});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.rfind("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<batch>\n", 0), 0u)
      << result.out;
  EXPECT_EQ(result.out.find("<?xml", 1), std::string::npos);
  EXPECT_EQ(result.out.find("{"), std::string::npos) << "no JSON inside";
  size_t lines = 0;
  for (auto at = result.out.find("<line "); at != std::string::npos;
       at = result.out.find("<line ", at + 1)) {
    ++lines;
  }
  EXPECT_EQ(lines, 3u);
  EXPECT_EQ(result.out.substr(result.out.size() - 9), "</batch>\n");
}

TEST_F(BatchTest, MachineFormatterOnALineOfATextBatchIsRefused) {
  std::string state = Seeded("line-json");
  auto result = RunProcess({"--host-state", state, "--batch",
                            WriteBatch({"network firewall get --formatter json"})});
  EXPECT_EQ(result.status, 2);
  EXPECT_NE(result.err.find("give --formatter json before --batch"), std::string::npos)
      << result.err;
  EXPECT_EQ(result.out, "");
}

TEST_F(BatchTest, DryRunPrintsWhatItWouldAndWritesNothing) {
  std::string state = Seeded("dry");
  std::string before = Text(state);
  auto batch = RunProcess({"--host-state", state, "--dry-run", "--formatter", "json", "--batch",
                           WriteBatch({"network vswitch standard add --vswitch-name vSwitch2",
                                       "network vswitch standard list"})});
  ASSERT_EQ(batch.status, 0) << batch.err;
  auto array = nlohmann::json::parse(batch.out);
  ASSERT_EQ(array.size(), 2u);
  EXPECT_EQ(array[0]["applied"], false);
  EXPECT_NE(array[1]["result"].dump().find("vSwitch2"), std::string::npos)
      << "later lines see the change";
  EXPECT_EQ(Text(state), before);

  auto one = RunProcess({"--host-state", state, "network", "vswitch", "standard", "add",
                         "--vswitch-name", "vSwitch3", "--dry-run"});
  EXPECT_EQ(one.status, 0) << one.err;
  auto failing = RunProcess({"--dry-run", "--host-state", state, "network", "vswitch",
                             "standard", "add", "--vswitch-name", "vSwitch0"});
  EXPECT_EQ(failing.status, 1) << "a dry run fails as the real one would";
  EXPECT_EQ(Text(state), before);

  // Against a state file not yet made: the default host, and still no file.
  auto fresh = RunProcess({"--dry-run", "--host-state", State("fresh"), "network", "vswitch",
                           "standard", "add", "--vswitch-name", "vSwitch2"});
  EXPECT_EQ(fresh.status, 0) << fresh.err;
  EXPECT_FALSE(std::filesystem::exists(State("fresh")));
  EXPECT_FALSE(std::filesystem::exists(State("fresh") + ".lock"));
}

TEST_F(BatchTest, RefusesWhatCannotStandInABatch) {
  std::string state = Seeded("refuse");
  std::string before = Text(state);
  auto nested = RunProcess({"--host-state", state, "--batch",
                            WriteBatch({"network vswitch standard add --vswitch-name vSwitch2",
                                        "--batch other.txt"})});
  EXPECT_EQ(nested.status, 2);
  EXPECT_EQ(Text(state), before);
  std::string other = Seeded("other");
  auto elsewhere = RunProcess(
      {"--host-state", state, "--batch",
       WriteBatch({"network vswitch standard add --vswitch-name vSwitch2 --host-state " + other})});
  EXPECT_EQ(elsewhere.status, 2);
  EXPECT_NE(elsewhere.err.find("--host-state cannot stand on a batch line"), std::string::npos);
  EXPECT_EQ(Text(state), before);
  auto missing = RunProcess({"--host-state", state, "--batch", dir_ + "/none.txt"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_NE(missing.err.find("cannot read batch file"), std::string::npos);
  auto words = RunProcess({"--batch", dir_ + "/none.txt", "network", "nic", "list"});
  EXPECT_EQ(words.status, 2);
}

TEST(SplitWordsTest, SplitsAsAShellDoes) {
  struct Case {
    char const* text;
    bool complete;
    std::vector<std::string> words;
  };
  for (auto const& c : std::vector<Case>{
           {"", true, {}},
           {"   # only a comment", true, {}},
           {"a  b\tc", true, {"a", "b", "c"}},
           {"-p 'VM Network' x", true, {"-p", "VM Network", "x"}},
           {"-p \"VM Network\"", true, {"-p", "VM Network"}},
           {"VM\\ Network", true, {"VM Network"}},
           {"a'b'\"c\"d", true, {"abcd"}},
           {"'' \"\"", true, {"", ""}},
           {"\"a \\\"q\\\" \\$x \\n\"", true, {"a \"q\" $x \\n"}},
           {"'a \\ b'", true, {"a \\ b"}},
           {"a#b # comment 'x", true, {"a#b"}},
           {"a \\\nb", true, {"a", "b"}},
           {"'open", false, {}},
           {"\"open", false, {}},
           {"trailing \\", false, {}},
       }) {
    SCOPED_TRACE(c.text);
    std::vector<std::string> words;
    EXPECT_EQ(Toolbase::Cli::SplitWords(c.text, words), c.complete);
    if (c.complete) {
      EXPECT_EQ(words, c.words);
    }
  }
}

}  // namespace
