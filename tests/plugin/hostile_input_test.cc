// Every command leaf of the tree, whatever leaves it has, run with missing,
// malformed, out-of-range and hostile values. A run may succeed; when it
// fails it says why on standard error with status 1 or 2, and the host state
// file is byte for byte what it was. Sanitizer builds run the same walk.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/harness.h"
#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"

namespace {

using TestSupport::HostTest;
using Toolbase::AutoCli::Command;
using Toolbase::AutoCli::NamespaceNode;
using Toolbase::AutoCli::NodeType;
using Toolbase::CallSpec::ParameterSpec;
using Args = std::vector<std::string>;

// Values for text parameters: empty, very long, control characters and line
// breaks, non-ASCII, bytes that are not UTF-8, format directives, paths,
// numbers at and past the limits, and names nothing on the host carries.
std::vector<std::string> const kHostileText = {
    "",
    std::string(5000, 'a'),
    "a\nb",
    "tab\there\r",
    "\x01\x7f\x1b[2J",
    "n\xC3\xA4me-\xE5\x90\x8D",
    "bad\xFF\xFE",
    "%s%n%x",
    "../../etc/passwd",
    "-1",
    "nosuch0",
    " ",
    "a,b,,c",
};

std::vector<std::string> const kHostileInt = {
    "", "-1", "-5", "0", "4294967296", "4294967295", "-4294967297", "9223372036854775807",
    "-9223372036854775808", "99999999999999999999", "1e3", " 7", "0x10",
};

std::vector<std::string> const kHostileBool = {"", "maybe", "2", "TRUE ", "\xFF"};

// Values that the default host knows, for the parameters a run needs besides
// the one under test, so that hostile values reach the checks behind the
// lookups. A parameter not listed gets a name nothing carries.
std::map<std::string, std::string> const kKnownValues = {
    {"vswitch-name", "vSwitch0"},   {"portgroup-name", "VM Network"},
    {"nic-name", "ornic0"},         {"ornic", "ornic0"},
    {"uplink-name", "ornic1"},      {"netstack", "defaultTcpipStack"},
    {"interface-name", "orvk0"},    {"dvs-name", "DSwitch-Prod"},
    {"dvport-id", "2"},             {"portid", "33554436"},
    {"ruleset-id", "dhcp"},         {"network", "10.60.0.0/16"},
    {"gateway", "192.168.10.1"},    {"ipv6", "2001:db8:10::99/64"},
    {"vlan-id", "0"},
};

std::string Filler(ParameterSpec const& parameter) {
  using namespace Toolbase::CallSpec;
  if (auto known = kKnownValues.find(parameter.GetName()); known != kKnownValues.end()) {
    return known->second;
  }
  if (auto const& constraint = parameter.GetConstraint()) {
    if (constraint->GetType() == StringEnum && !constraint->GetStringEnums().empty()) {
      return constraint->GetStringEnums().front().first;
    }
    if (constraint->GetType() == IntRange) return std::to_string(constraint->GetLow());
    if (constraint->GetType() == IntEnum && !constraint->GetIntEnums().empty()) {
      return std::to_string(constraint->GetIntEnums().front());
    }
  }
  switch (parameter.GetType()) {
    case Int:
      return "1";
    case Bool:
      return "true";
    default:
      return "nosuch0";
  }
}

std::vector<std::string> const& HostileValues(ParameterSpec const& parameter) {
  switch (parameter.GetType()) {
    case Toolbase::CallSpec::Int:
      return kHostileInt;
    case Toolbase::CallSpec::Bool:
      return kHostileBool;
    default:
      return kHostileText;
  }
}

void CollectLeaves(NamespaceNode& node, std::vector<std::shared_ptr<Command>>& leaves) {
  for (auto const& child : node.GetNamespaceNodes()) {
    if (child->GetType() == NodeType::Command) {
      if (auto command = std::dynamic_pointer_cast<Command>(child)) leaves.push_back(command);
    } else {
      CollectLeaves(*child, leaves);
    }
  }
}

Args Words(Command const& command) {
  std::istringstream in(command.GetPathString(' '));
  Args words;
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

// Printable form of a command line for failure reports.
std::string Show(Args const& args) {
  std::string text;
  for (auto const& arg : args) {
    text += text.empty() ? "" : " ";
    std::string shown = arg.size() > 40 ? arg.substr(0, 20) + "...(" +
                                              std::to_string(arg.size()) + " bytes)"
                                        : arg;
    text += testing::PrintToString(shown);
  }
  return text;
}

class HostileInputTest : public HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    SeedHost();
    pristine_ = StateFileText();
  }

  // Runs one line and checks the contract; puts the default host back when a
  // run changed it.
  void Check(Args const& args, std::string const& value = "") {
    ++runs_;
    auto const result = Run(args);
    std::string const after = StateFileText();
    if (result.status != 0) {
      EXPECT_TRUE(result.status == 1 || result.status == 2)
          << Show(args) << " exited " << result.status;
      EXPECT_NE(result.err, "") << Show(args) << " failed without a message";
      EXPECT_EQ(result.err.find("json.exception"), std::string::npos)
          << Show(args) << ": " << result.err;
      EXPECT_TRUE(after == pristine_) << Show(args) << " failed but changed the state file";
    }
    // Names and texts are shown in lists and tables: the host does not keep
    // line breaks or terminal controls.
    bool const control = std::any_of(value.begin(), value.end(),
                                     [](unsigned char c) { return c < 0x20 || c == 0x7f; });
    if (result.status == 0 && control && after != pristine_) {
      std::string const stored = nlohmann::json(value).dump();
      EXPECT_EQ(after.find(stored.substr(1, stored.size() - 2)), std::string::npos)
          << Show(args) << " stored a control character";
    }
    if (after != pristine_) {
      std::ofstream(state_path_, std::ios::trunc) << pristine_;
      Reload();
    }
  }

  std::string pristine_;
  int runs_ = 0;
};

TEST_F(HostileInputTest, EveryLeafSurvivesHostileValues) {
  std::vector<std::shared_ptr<Command>> leaves;
  CollectLeaves(TestSupport::PluginRoot(), leaves);
  ASSERT_GE(leaves.size(), 81u);
  for (auto const& leaf : leaves) {
    Args const words = Words(*leaf);
    auto const spec = leaf->GetInputSpec();
    auto const& parameters = spec->GetParameters();
    bool needs_something = false;
    for (auto const& parameter : parameters) needs_something |= parameter->IsRequired();

    // Nothing given: a leaf with required parameters refuses the line.
    {
      auto const result = Run(words);
      if (needs_something) {
        EXPECT_EQ(result.status, 2) << Show(words);
        EXPECT_NE(result.err.find("Missing required parameter"), std::string::npos)
            << Show(words) << ": " << result.err;
      }
      if (StateFileText() != pristine_) {
        std::ofstream(state_path_, std::ios::trunc) << pristine_;
        Reload();
      }
    }
    // One parameter at a time hostile, the required others plausible.
    for (auto const& target : parameters) {
      if (target->GetType() == Toolbase::CallSpec::Flag) continue;
      Args base = words;
      for (auto const& other : parameters) {
        if (other == target || !other->IsRequired()) continue;
        base.push_back("--" + other->GetName());
        if (other->GetType() != Toolbase::CallSpec::Flag) base.push_back(Filler(*other));
      }
      for (auto const& value : HostileValues(*target)) {
        Args args = base;
        args.push_back("--" + target->GetName());
        args.push_back(value);
        Check(args, value);
      }
      // The option without its value.
      Args missing = base;
      missing.push_back("--" + target->GetName());
      Check(missing);
    }
    // A parameter no leaf has, and a stray word.
    Check([&] {
      Args args = words;
      args.push_back("--no-such-parameter");
      return args;
    }());
    Check([&] {
      Args args = words;
      args.push_back("-\xFF");
      return args;
    }());
  }
  EXPECT_GT(runs_, 20 * static_cast<int>(leaves.size()));
  RecordProperty("runs", runs_);
}

// Every leaf with plausible values while the host refuses every operation:
// the handler paths report the host's text and, under LeakSanitizer, show
// that no service object outlives a failed command.
TEST_F(HostileInputTest, EveryLeafFailsCleanlyWhenTheHostRefuses) {
  std::vector<std::shared_ptr<Command>> leaves;
  CollectLeaves(TestSupport::PluginRoot(), leaves);
  InjectFault("*", "host refused the operation");
  for (auto const& leaf : leaves) {
    Args args = Words(*leaf);
    auto const spec = leaf->GetInputSpec();
    for (auto const& parameter : spec->GetParameters()) {
      if (!parameter->IsRequired()) continue;
      args.push_back("--" + parameter->GetName());
      if (parameter->GetType() != Toolbase::CallSpec::Flag) args.push_back(Filler(*parameter));
    }
    auto const result = Run(args);
    // Success is possible only for a run with nothing to do (`ip set` alone).
    if (result.status != 0) {
      EXPECT_NE(result.err, "") << Show(args);
    }
    EXPECT_TRUE(StateFileText() == pristine_) << Show(args) << " changed the state file";
  }
}

}  // namespace
