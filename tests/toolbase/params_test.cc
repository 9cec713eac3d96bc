// Parameter parsing and checking against a command's declared parameters.
#include "params.h"

#include <gtest/gtest.h>

#include "toolbase/call_spec.h"

namespace {

using namespace Toolbase::CallSpec;
using Toolbase::Cli::ParseParameters;
using Toolbase::Cli::UsageError;

std::shared_ptr<InputSpec> SampleSpec() {
  auto spec = InputSpec::New();
  auto add = [&](char const* name, ParameterType type, char const* short_name, bool required,
                 std::shared_ptr<ParameterConstraint> constraint = nullptr) {
    auto parameter = ParameterSpec::New(name, type);
    parameter->SetRequired(required);
    if (short_name) parameter->SetShortName(short_name);
    parameter->SetDescription("Sample. Valid values: %ENUM%");
    if (constraint) parameter->SetConstraint(constraint);
    spec->AddParameter(parameter);
  };
  add("name", String, "n", true);
  add("mtu", Int, "m", false);
  add("enabled", Bool, "e", false);
  add("force", Flag, "f", false);
  add("alias", StringList, "a", false);
  auto range = ParameterConstraint::New(IntRange);
  range->SetIntRange(0, 4095);
  add("vlan-id", Int, "v", false, range);
  auto speeds = ParameterConstraint::New(IntEnum);
  speeds->AddIntEnum(10);
  speeds->AddIntEnum(100);
  add("speed", Int, nullptr, false, speeds);
  auto kinds = ParameterConstraint::New(StringEnum);
  kinds->AddStringEnum("beacon", "Beacon probing");
  kinds->AddStringEnum("link", "Link status only");
  add("failure-detection", String, nullptr, false, kinds);
  auto pattern = ParameterConstraint::New(StringRegex);
  pattern->SetStringRegex("[a-z]+[0-9]");
  add("uplink", String, nullptr, false, pattern);
  auto ports = ParameterConstraint::New(IntRange);
  ports->SetIntRange(1, 8);
  add("portid", Int, nullptr, false, ports);
  add("interface", String, "i", false, pattern);
  spec->FindParameter("interface")->SetDescription("An interface name such as orvk3.");
  return spec;
}

TEST(ParseParametersTest, AcceptsEveryWayOfGivingAValue) {
  auto input = ParseParameters(*SampleSpec(),
                               {"--name", "a", "-m", "-5", "--enabled=Yes", "-f", "-a", "x",
                                "--alias=y", "-v=4095", "--speed", "100",
                                "--failure-detection", "link", "--uplink", "ornic1",
                                "--portid", "08"});
  EXPECT_EQ(input->GetParameter("name"), "a");
  EXPECT_EQ(input->GetParameterInt("mtu"), -5);
  EXPECT_TRUE(input->GetParameterBool("enabled"));
  EXPECT_TRUE(input->IsFlagSet("force"));
  EXPECT_TRUE(input->HasParameter("force"));
  std::vector<std::string> aliases;
  input->GetParameterList("alias", aliases);
  EXPECT_EQ(aliases, (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(input->GetParameterInt("vlan-id"), 4095);
  // An integer read as text is what the user typed.
  EXPECT_EQ(input->GetParameter("portid"), "08");
  EXPECT_EQ(input->GetParameterInt("portid"), 8);
  EXPECT_FALSE(input->HasParameter("speed-x"));
}

TEST(ParseParametersTest, BoolSpellings) {
  struct Case {
    char const* word;
    bool value;
  };
  for (auto c : {Case{"true", true}, Case{"FALSE", false}, Case{"yes", true}, Case{"No", false},
                 Case{"1", true}, Case{"0", false}}) {
    SCOPED_TRACE(c.word);
    auto input = ParseParameters(*SampleSpec(), {"-n", "x", "-e", c.word});
    EXPECT_EQ(input->GetParameterBool("enabled"), c.value);
  }
}

TEST(ParseParametersTest, RejectsBadLinesWithAClearMessage) {
  struct Case {
    std::vector<std::string> args;
    char const* message;
  };
  std::vector<Case> cases = {
      {{}, "Missing required parameter --name"},
      {{"-n", "x", "--bogus", "1"},
       "Unknown parameter --bogus. Valid parameters: --name, --mtu, --enabled, --force, --alias, "
       "--vlan-id, --speed, --failure-detection, --uplink, --portid, --interface"},
      {{"-n", "x", "--sped", "10"},
       "Unknown parameter --sped. Did you mean --speed? Valid parameters: --name, --mtu, "
       "--enabled, --force, --alias, --vlan-id, --speed, --failure-detection, --uplink, "
       "--portid, --interface"},
      {{"-n", "x", "--uplnik", "a1"},
       "Unknown parameter --uplnik. Did you mean --uplink? Valid parameters: --name, --mtu, "
       "--enabled, --force, --alias, --vlan-id, --speed, --failure-detection, --uplink, "
       "--portid, --interface"},
      {{"-n", "x", "-z"}, "Unknown parameter -z. Valid parameters: --name, --mtu, --enabled, "
                          "--force, --alias, --vlan-id, --speed, --failure-detection, --uplink, "
                          "--portid, --interface"},
      {{"-n"}, "Parameter --name needs a value"},
      {{"-n", "x", "-n", "y"}, "Parameter --name is given more than once"},
      {{"-n", "x", "stray"}, "Unexpected argument 'stray'"},
      {{"-n", "x", "--mtu", "15x"}, "Parameter --mtu expects an integer, got '15x'"},
      {{"-n", "x", "--mtu", ""}, "Parameter --mtu expects an integer, got ''"},
      {{"-n", "x", "--mtu", "99999999999999999999"},
       "Parameter --mtu expects an integer, got '99999999999999999999'"},
      {{"-n", "x", "--enabled", "maybe"},
       "Parameter --enabled expects true or false (also yes/no, 1/0), got 'maybe'"},
      {{"-n", "x", "--force=yes"}, "Parameter --force takes no value"},
      {{"-n", "x", "-v", "4096"}, "Parameter --vlan-id value 4096 is out of range: allowed 0 to 4095"},
      {{"-n", "x", "-v", "-1"}, "Parameter --vlan-id value -1 is out of range: allowed 0 to 4095"},
      {{"-n", "x", "--speed", "1000"},
       "Parameter --speed value '1000' is not allowed: allowed values are 10, 100"},
      {{"-n", "x", "--failure-detection", "Link"},
       "Parameter --failure-detection value 'Link' is not allowed: allowed values are beacon, link"},
      // A pattern is told in the parameter's words, never as the pattern.
      {{"-n", "x", "--uplink", "ornic1x"},
       "Parameter --uplink value 'ornic1x' does not have the expected form"},
      {{"-n", "x", "-i", "Eth0"},
       "Parameter --interface value 'Eth0' does not have the expected form: An interface name "
       "such as orvk3."},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.args));
    try {
      ParseParameters(*SampleSpec(), c.args);
      ADD_FAILURE() << "accepted";
    } catch (UsageError const& error) {
      EXPECT_EQ(std::string(error.what()), c.message);
    }
  }
}

TEST(ExpandDescriptionTest, FillsValueListsFromTheConstraint) {
  auto spec = SampleSpec();
  EXPECT_EQ(Toolbase::Cli::ExpandDescription(*spec->FindParameter("vlan-id")),
            "Sample. Valid values: 0 to 4095");
  EXPECT_EQ(Toolbase::Cli::ExpandDescription(*spec->FindParameter("speed")),
            "Sample. Valid values: 10, 100");
  auto parameter = spec->FindParameter("failure-detection");
  parameter->SetDescription("Detection. %FULLENUM%");
  EXPECT_EQ(Toolbase::Cli::ExpandDescription(*parameter),
            "Detection. \nbeacon: Beacon probing\nlink: Link status only");
  EXPECT_EQ(Toolbase::Cli::ExpandDescription(*spec->FindParameter("name")),
            "Sample. Valid values: %ENUM%");
}

}  // namespace
