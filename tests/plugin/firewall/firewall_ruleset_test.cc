// The firewall ruleset, rule, client and allowed-address commands against the
// simulated host.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_store.h"
#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using namespace Toolbase::MetaObj;
using TestSupport::HostTest;
using TestSupport::MetaText;
using TestSupport::SeededHostTest;

using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

class FirewallRulesetTest : public SeededHostTest {
 protected:
  std::string Row(std::string const& command, std::string const& id) {
    auto rows = Rows({"network", "firewall", "ruleset", command, "list", "-r", id});
    return rows.size() == 1 ? rows[0] : "(" + std::to_string(rows.size()) + " rows)";
  }
  std::string AllowedIps(std::string const& id) {
    auto rows = Rows({"network", "firewall", "ruleset", "allowedip", "list", "-r", id});
    return rows.size() == 1 ? rows[0] : "(" + std::to_string(rows.size()) + " rows)";
  }
  std::string Ruleset(std::string const& id) {
    auto rows = Rows({"network", "firewall", "ruleset", "list", "-r", id});
    return rows.size() == 1 ? rows[0] : "(" + std::to_string(rows.size()) + " rows)";
  }
  void ExpectTrue(Args const& args, Messages const& messages = {}) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), messages);
    EXPECT_EQ(MetaText(output->GetRootObject()), "true");
  }
  void ExpectFailure(Args const& args, std::string const& message) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
  // Adds a ruleset to the host as the configuration would bring it.
  void AddRuleset(OrvkCtl::Sim::FirewallRulesetState const& ruleset) {
    OrvkCtl::Sim::ChangeHost(
        [&](OrvkCtl::Sim::HostModel& host) { host.firewall.rulesets.push_back(ruleset); });
  }
};

TEST_F(FirewallRulesetTest, DefaultHostListsItsRulesetsInOrder) {
  auto rows = Rows({"network", "firewall", "ruleset", "list"});
  ASSERT_EQ(rows.size(), 13u);
  EXPECT_EQ(rows[0], "{Name=sshServer,Enabled=true}");
  EXPECT_EQ(rows[1], "{Name=sshClient,Enabled=false}");
  EXPECT_EQ(Ruleset("snmpAgent"), "{Name=snmpAgent,Enabled=false}");
}

TEST_F(FirewallRulesetTest, NoRulesetsGiveAnEmptyList) {
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) { host.firewall.rulesets.clear(); });
  for (char const* command : {"ruleset", "rule", "allowedip"}) {
    SCOPED_TRACE(command);
    Args args = {"network", "firewall", "ruleset", command, "list"};
    if (std::string(command) == "ruleset") args.erase(args.begin() + 3);
    EXPECT_EQ(Rows(args), std::vector<std::string>{});
  }
}

TEST_F(FirewallRulesetTest, UnknownIdIsReportedInTheWordsOfEachCommand) {
  struct Case {
    Args args;
    std::string message;
  };
  std::vector<Case> cases = {
      {{"network", "firewall", "ruleset", "list", "-r", "nosuch"}, "Ruleset Not Found: nosuch"},
      {{"network", "firewall", "ruleset", "rule", "list", "-r", "nosuch"},
       "Ruleset Not Found: nosuch"},
      {{"network", "firewall", "ruleset", "allowedip", "list", "-r", "nosuch"},
       "Ruleset Not Found: nosuch"},
      {{"network", "firewall", "ruleset", "set", "-r", "nosuch", "-e", "true"},
       "Invalid Ruleset Id."},
      {{"network", "firewall", "ruleset", "client", "get", "-r", "nosuch"}, "Invalid Ruleset Id."},
      {{"network", "firewall", "ruleset", "client", "add", "-r", "nosuch"}, "Invalid Ruleset Id."},
      {{"network", "firewall", "ruleset", "client", "remove", "-r", "nosuch"},
       "Invalid Ruleset Id."},
      {{"network", "firewall", "ruleset", "allowedip", "add", "-r", "nosuch", "-i", "10.0.0.1"},
       "Invalid Ruleset Id."},
      {{"network", "firewall", "ruleset", "allowedip", "remove", "-r", "nosuch", "-i", "1.2.3.4"},
       "Invalid Ruleset Id."},
  };
  std::string before = StateFileText();
  for (auto const& c : cases) {
    SCOPED_TRACE(c.args[3] + " " + c.args[4]);
    ExpectFailure(c.args, c.message);
  }
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(FirewallRulesetTest, ListCommandsNameTheIdWhenTheExistenceCheckFails) {
  InjectFault("FirewallRulesetImpl::IsLoaded", "ruleset table locked");
  for (char const* command : {"list", "rule", "allowedip"}) {
    SCOPED_TRACE(command);
    Args args = {"network", "firewall", "ruleset", command, "list", "-r", "sshServer"};
    if (std::string(command) == "list") args.erase(args.begin() + 4);
    ExpectFailure(args, "Failed to check loaded status: sshServer");
  }
}

TEST_F(FirewallRulesetTest, RuleListSpellsOutPortTypeDirectionAndProtocol) {
  EXPECT_EQ(Row("rule", "sshServer"),
            "{Ruleset=sshServer,Port Type=Dst,Port Begin=22,Port End=22,Direction=Inbound,"
            "Protocol=TCP}");
  auto rows = Rows({"network", "firewall", "ruleset", "rule", "list", "-r", "dhcpClient"});
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[1],
            "{Ruleset=dhcpClient,Port Type=Src,Port Begin=68,Port End=68,Direction=Outbound,"
            "Protocol=UDP}");
  // Any value but 1, 0 and 0 reads as source, outbound and UDP; a ruleset
  // without rules adds no row.
  AddRuleset({"odd", true, 0, true, {}, {{"odd", 7, 1, 2, -3, 9}}});
  AddRuleset({"empty", true, 0, true, {}, {}});
  EXPECT_EQ(Row("rule", "odd"),
            "{Ruleset=odd,Port Type=Src,Port Begin=1,Port End=2,Direction=Outbound,"
            "Protocol=UDP}");
  EXPECT_EQ(Rows({"network", "firewall", "ruleset", "rule", "list", "-r", "empty"}),
            std::vector<std::string>{});
  EXPECT_EQ(Rows({"network", "firewall", "ruleset", "rule", "list"}).size(), 26u);
}

TEST_F(FirewallRulesetTest, SetNeedsAnOption) {
  ExpectFailure({"network", "firewall", "ruleset", "set", "-r", "nosuch"},
                "Need parameter --enabled or --allowed-all");
}

TEST_F(FirewallRulesetTest, SetRefusesTheAllowedAllFlagAsItStands) {
  // ntpClient is enabled and allows all: the refusal leaves it enabled.
  ExpectFailure(
      {"network", "firewall", "ruleset", "set", "-r", "ntpClient", "-a", "true", "-e", "false"},
      "Already allowed all ip");
  EXPECT_EQ(Ruleset("ntpClient"), "{Name=ntpClient,Enabled=true}");
  ExpectFailure(
      {"network", "firewall", "ruleset", "set", "-r", "sshServer", "--allowed-all", "false"},
      "Already use allowed ip list");
}

TEST_F(FirewallRulesetTest, SetToTheCurrentStateCallsNothing) {
  InjectFault("FirewallRulesetImpl::Enable", "must not be called");
  InjectFault("FirewallRulesetImpl::Disable", "must not be called");
  ExpectTrue({"network", "firewall", "ruleset", "set", "-r", "sshServer", "-e", "true"});
  ExpectTrue({"network", "firewall", "ruleset", "set", "-r", "sshClient", "-e", "false"});
}

TEST_F(FirewallRulesetTest, SetChangesBothAndSurvivesAReload) {
  ExpectTrue(
      {"network", "firewall", "ruleset", "set", "-r", "sshClient", "-a", "false", "-e", "true"});
  Reload();
  EXPECT_EQ(Ruleset("sshClient"), "{Name=sshClient,Enabled=true}");
  EXPECT_EQ(AllowedIps("sshClient"), "{Ruleset=sshClient,Allowed IP Addresses=[]}");
  ExpectTrue({"network", "firewall", "ruleset", "set", "-r", "sshClient", "-e", "false"});
  EXPECT_EQ(Ruleset("sshClient"), "{Name=sshClient,Enabled=false}");
}

TEST_F(FirewallRulesetTest, FlagChangeStaysWhenEnablingFails) {
  InjectFault("FirewallRulesetImpl::Enable", "ruleset busy");
  ExpectFailure(
      {"network", "firewall", "ruleset", "set", "-r", "sshClient", "-a", "false", "-e", "true"},
      "ruleset busy");
  ClearFaults();
  EXPECT_EQ(Ruleset("sshClient"), "{Name=sshClient,Enabled=false}");
  EXPECT_EQ(AllowedIps("sshClient"), "{Ruleset=sshClient,Allowed IP Addresses=[]}");
}

TEST_F(FirewallRulesetTest, ClientsSwitchTheRulesetAndCount) {
  Args get = {"network", "firewall", "ruleset", "client", "get", "-r", "syslogClient"};
  Args add = {"network", "firewall", "ruleset", "client", "add", "-r", "syslogClient"};
  Args remove = {"network", "firewall", "ruleset", "client", "remove", "-r", "syslogClient"};
  EXPECT_EQ(MetaText(Execute(get)->GetRootObject()), "{Ruleset Client Count=0}");
  ExpectTrue(add);
  ExpectTrue(add);
  Reload();
  EXPECT_EQ(MetaText(Execute(get)->GetRootObject()), "{Ruleset Client Count=2}");
  EXPECT_EQ(Ruleset("syslogClient"), "{Name=syslogClient,Enabled=true}");
  ExpectTrue(remove);
  EXPECT_EQ(Ruleset("syslogClient"), "{Name=syslogClient,Enabled=true}");
  ExpectTrue(remove);
  EXPECT_EQ(Ruleset("syslogClient"), "{Name=syslogClient,Enabled=false}");
  ExpectFailure(remove, "Ruleset syslogClient has no client to remove");
}

TEST_F(FirewallRulesetTest, ClientGetPrintsTheCount) {
  auto result = Run({"network", "firewall", "ruleset", "client", "get", "-r", "webManagement"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "Ruleset Client Count: 2\n");
}

TEST_F(FirewallRulesetTest, AllowedListOrderIsByKindNotByAdding) {
  for (char const* entry : {"2001:db8::/48", "10.9.0.0/16", "fe80::7", "10.1.1.1", "10.1.1.2"}) {
    ExpectTrue(
        {"network", "firewall", "ruleset", "allowedip", "add", "-r", "snmpAgent", "-i", entry});
  }
  Reload();
  EXPECT_EQ(AllowedIps("snmpAgent"),
            "{Ruleset=snmpAgent,Allowed IP Addresses=[10.1.1.1,10.1.1.2,fe80::7,10.9.0.0/16,"
            "2001:db8::/48]}");
  ExpectTrue({"network", "firewall", "ruleset", "allowedip", "remove", "-r", "snmpAgent", "-i",
              "10.9.0.0/16"});
  EXPECT_EQ(AllowedIps("snmpAgent"),
            "{Ruleset=snmpAgent,Allowed IP Addresses=[10.1.1.1,10.1.1.2,fe80::7,2001:db8::/48]}");
}

TEST_F(FirewallRulesetTest, AllowedAllHidesTheListAndRefusesChanges) {
  ExpectTrue({"network", "firewall", "ruleset", "set", "-r", "sshServer", "-a", "true"});
  EXPECT_EQ(AllowedIps("sshServer"), "{Ruleset=sshServer,Allowed IP Addresses=[All]}");
  for (char const* verb : {"add", "remove"}) {
    for (char const* text : {"192.168.10.0/24", "", "junk"}) {
      SCOPED_TRACE(std::string(verb) + " '" + text + "'");
      ExpectFailure(
          {"network", "firewall", "ruleset", "allowedip", verb, "-r", "sshServer", "-i", text},
          "Couldn't update allowed ip list when allowed-all flag is true.");
    }
  }
  // The list is kept and shows again with the flag off.
  ExpectTrue({"network", "firewall", "ruleset", "set", "-r", "sshServer", "-a", "false"});
  EXPECT_EQ(AllowedIps("sshServer"),
            "{Ruleset=sshServer,Allowed IP Addresses=[10.50.0.12,192.168.10.0/24,"
            "2001:db8:10::/64]}");
}

TEST_F(FirewallRulesetTest, AllowedIpChangesReportTheLibrarysWords) {
  struct Case {
    char const* verb;
    char const* text;
    Messages messages;
    bool root;
  };
  std::vector<Case> cases = {
      {"add", "", {"Invalid allowedip parameter."}, true},
      {"remove", "", {"Invalid allowedip parameter."}, true},
      {"add", "10.0.0.300", {"Invalid ip address or network: '10.0.0.300'"}, false},
      {"add",
       "10.50.0.12",
       {"Ip address 10.50.0.12 is already in the allowed ip list of sshServer"},
       false},
      {"add",
       "192.168.10.77/24",
       {"Ip address 192.168.10.0/24 is already in the allowed ip list of sshServer"},
       false},
      {"remove",
       "10.50.0.13",
       {"Ip address 10.50.0.13 is not in the allowed ip list of sshServer"},
       false},
  };
  std::string before = StateFileText();
  for (auto const& c : cases) {
    SCOPED_TRACE(std::string(c.verb) + " " + c.text);
    auto output = Execute(
        {"network", "firewall", "ruleset", "allowedip", c.verb, "-r", "sshServer", "-i", c.text});
    EXPECT_EQ(output->GetErrorMessages(), c.messages);
    EXPECT_EQ(MetaText(output->GetRootObject()), c.root ? "true" : "(none)");
  }
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(FirewallRulesetTest, HandlersReportTheHostText) {
  struct Case {
    Args args;
    char const* operation;
  };
  std::vector<Case> cases = {
      {{"network", "firewall", "ruleset", "list"}, "SystemInfoImpl::GetFirewallRulesets"},
      {{"network", "firewall", "ruleset", "list"}, "FirewallRulesetImpl::IsEnabled"},
      {{"network", "firewall", "ruleset", "rule", "list"}, "FirewallRulesetImpl::GetRules"},
      {{"network", "firewall", "ruleset", "allowedip", "list"},
       "FirewallRulesetImpl::GetAllowedIps"},
      {{"network", "firewall", "ruleset", "set", "-r", "sshServer", "-e", "false"},
       "FirewallRulesetImpl::Disable"},
      {{"network", "firewall", "ruleset", "set", "-r", "sshServer", "-a", "true"},
       "FirewallRulesetImpl::SetAllowedAll"},
      {{"network", "firewall", "ruleset", "client", "get", "-r", "ntpClient"},
       "Host::GetSystemInfo"},
      {{"network", "firewall", "ruleset", "client", "get", "-r", "ntpClient"},
       "FirewallRulesetImpl::GetClientCount"},
      {{"network", "firewall", "ruleset", "client", "add", "-r", "ntpClient"},
       "HostFactory::GetHost"},
      {{"network", "firewall", "ruleset", "client", "remove", "-r", "ntpClient"},
       "FirewallRulesetImpl::RemoveClient"},
      {{"network", "firewall", "ruleset", "allowedip", "add", "-r", "sshServer", "-i", "1.2.3.4"},
       "FirewallRulesetImpl::AddAllowedIp"},
      {{"network", "firewall", "ruleset", "allowedip", "remove", "-r", "sshServer", "-i",
        "10.50.0.12"},
       "FirewallRulesetImpl::IsAllowedAll"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    ClearFaults();
    InjectFault(c.operation, "firewall configuration unreadable");
    ExpectFailure(c.args, "firewall configuration unreadable");
  }
}

TEST_F(FirewallRulesetTest, ToolPrintsTablesAndMachineFormats) {
  auto result = Run({"network", "firewall", "ruleset", "list"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.substr(0, result.out.find('\n')).find("Name"), 0u) << result.out;
  EXPECT_NE(result.out.find("sshServer"), std::string::npos);
  result = Run({"--formatter", "json", "network", "firewall", "ruleset", "allowedip", "list", "-r",
                "webManagement"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("\"192.168.10.0/24\""), std::string::npos) << result.out;
  // The tool waits for this process to let go of the host.
  Reload();
  auto process = TestSupport::RunProcess({"network", "firewall", "ruleset", "list", "-r", "nosuch"},
                                         {{"TOOLBASE_HOST_STATE", state_path_}});
  EXPECT_EQ(process.status, 1);
  EXPECT_EQ(process.err, "Ruleset Not Found: nosuch\n");
  EXPECT_EQ(process.out, "");
}

}  // namespace
