// The firewall of a linux host: nftables' table inet toolbase, checked
// against what `nft` itself lists, with another table beside it that must
// stay as it is.
#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host_backend.h"
#include "linux_test.h"

namespace LinuxTest {
namespace {

using nlohmann::json;

constexpr char kOtherTable[] =
    "nft add table inet other && "
    "nft add chain inet other c '{ type filter hook input priority 10; policy accept; }' && "
    "nft add rule inet other c tcp dport 4242 drop";

class FirewallTest : public LinuxHostTest {
 protected:
  void SetUp() override {
    LinuxHostTest::SetUp();
    Shell(kOtherTable);
    other_ = Shell("nft -j list table inet other");
  }
  void TearDown() override {
    EXPECT_EQ(Shell("nft -j list table inet other"), other_) << "the other table changed";
    LinuxHostTest::TearDown();
  }

  static bool TableExists() {
    return Shell("nft list tables").find("table inet toolbase") != std::string::npos;
  }

  // The rules of chain `chain` as nft writes them, one a line.
  static std::vector<std::string> ChainRules(std::string const& chain) {
    std::vector<std::string> rules;
    std::string const text = Shell("nft list chain inet toolbase " + chain);
    size_t at = 0;
    while (at < text.size()) {
      size_t end = text.find('\n', at);
      if (end == std::string::npos) end = text.size();
      std::string line = text.substr(at, end - at);
      at = end + 1;
      line.erase(0, line.find_first_not_of(" \t"));
      if (line.empty() || line == "}" || line.rfind("table ", 0) == 0 ||
          line.rfind("chain ", 0) == 0 || line.rfind("type ", 0) == 0) {
        continue;
      }
      rules.push_back(line);
    }
    return rules;
  }

  // The items of the table's JSON listing; with `handles` false, without the
  // handles nftables numbers them with (a restored table has new ones).
  static json Items(bool handles = true) {
    json items = json::parse(Shell("nft -j list table inet toolbase"))["nftables"];
    if (!handles) {
      for (auto& item : items) {
        for (auto& [kind, object] : item.items()) object.erase("handle");
      }
    }
    return items;
  }

  // The policy of base chain `chain` in the JSON listing.
  static std::string Policy(std::string const& chain) {
    for (auto const& item : Items()) {
      if (item.contains("chain") && item["chain"]["name"] == chain) {
        return item["chain"].value("policy", "");
      }
    }
    return "(no chain)";
  }

  // Each set of the table and its elements as text, sorted.
  static std::map<std::string, std::set<std::string>> Sets() {
    std::map<std::string, std::set<std::string>> sets;
    for (auto const& item : Items()) {
      if (!item.contains("set")) continue;
      auto& elements = sets[item["set"]["name"]];
      for (auto const& element : item["set"].value("elem", json::array())) {
        elements.insert(element.is_string() ? element.get<std::string>()
                                            : element["prefix"]["addr"].get<std::string>() + "/" +
                                                  element["prefix"]["len"].dump());
      }
    }
    return sets;
  }

  json Listing(TestSupport::Args args) {
    args.insert(args.end(), {"--formatter", "json"});
    return json::parse(Ok(args));
  }

  // The listings agree with the table: a ruleset is enabled when the input
  // chain jumps to its chain, it admits only its allowed addresses when its
  // chain starts with a guard, and those are its sets' elements.
  void ExpectListingsAgreeWithTable() {
    std::set<std::string> jumps, guarded;
    for (auto const& item : Items()) {
      if (!item.contains("rule")) continue;
      auto const& rule = item["rule"];
      auto const& first = rule["expr"][0];
      if (rule["chain"] == "input" && first.contains("jump")) jumps.insert(first["jump"]["target"]);
      if (first.contains("match") && first["match"]["op"] == "!=") guarded.insert(rule["chain"]);
    }
    auto const sets = Sets();
    auto const allowed = Listing({"network", "firewall", "ruleset", "allowedip", "list"});
    auto const rulesets = Listing({"network", "firewall", "ruleset", "list"});
    ASSERT_EQ(rulesets.size(), allowed.size());
    for (size_t i = 0; i < rulesets.size(); ++i) {
      std::string const id = rulesets[i]["Name"];
      SCOPED_TRACE(id);
      EXPECT_EQ(rulesets[i]["Enabled"], jumps.count(id + "-in") == 1);
      std::set<std::string> listed;
      for (auto const& text : allowed[i]["Allowed IP Addresses"]) listed.insert(text);
      if (listed == std::set<std::string>{"All"}) {
        EXPECT_EQ(guarded.count(id + "-in"), 0u);
      } else {
        EXPECT_EQ(guarded.count(id + "-in"), 1u);
        std::set<std::string> in_sets = sets.at(id + "-v4");
        in_sets.merge(std::set<std::string>(sets.at(id + "-v6")));
        EXPECT_EQ(listed, in_sets);
      }
    }
  }

  std::string other_;
};

TEST_F(FirewallTest, TheWalkthroughLeavesExactlyTheRulesTheListingsShow) {
  using Args = TestSupport::Args;
  auto get = [&] { return Listing({"network", "firewall", "get"}); };
  EXPECT_FALSE(TableExists());
  EXPECT_EQ(get(), json::parse(R"({"Loaded":false,"Enabled":false,"DefaultAction":"PASS"})"));
  Refused({"network", "firewall", "set", "--enabled", "true"}, "Firewall module is not loaded");
  EXPECT_FALSE(TableExists());

  // Loaded, a firewall starts off: it lets everything by.
  Ok({"network", "firewall", "load"});
  EXPECT_TRUE(TableExists());
  EXPECT_EQ(get(), json::parse(R"({"Loaded":true,"Enabled":false,"DefaultAction":"PASS"})"));
  std::vector<std::string> const base = {"ct state established,related accept",
                                         "iifname \"lo\" accept", "jump dynamic-in"};
  std::vector<std::string> disabled = base;
  disabled.insert(disabled.begin(), "accept");
  EXPECT_EQ(ChainRules("input"), disabled);
  EXPECT_EQ(Policy("input"), "accept");
  ExpectListingsAgreeWithTable();

  struct Step {
    Args args;
    std::string chain;                // whose rules then are
    std::vector<std::string> rules;
  };
  std::vector<std::string> ssh_in = base;
  ssh_in.push_back("jump sshServer-in");
  std::vector<Step> const steps = {
      {{"network", "firewall", "set", "--enabled", "true"}, "input", base},
      {{"network", "firewall", "set", "--default-action", "false"}, "input", base},
      {{"network", "firewall", "ruleset", "set", "-r", "sshServer", "-e", "true"}, "input", ssh_in},
      {{"network", "firewall", "ruleset", "set", "-r", "sshServer", "-e", "true"},
       "sshServer-in",
       {"tcp dport 22 accept"}},
      {{"network", "firewall", "ruleset", "set", "-r", "sshServer", "-a", "false"},
       "sshServer-in",
       {"ip saddr != @sshServer-v4 return", "ip6 saddr != @sshServer-v6 return",
        "tcp dport 22 accept"}},
      {{"network", "firewall", "ruleset", "allowedip", "add", "-r", "sshServer", "-i",
        "192.168.10.0/24"},
       "sshServer-out",
       {"ip daddr != @sshServer-v4 return", "ip6 daddr != @sshServer-v6 return"}},
      {{"network", "firewall", "ruleset", "allowedip", "add", "-r", "sshServer", "-i",
        "2001:db8:10::/64"},
       "input",
       ssh_in},
      {{"network", "firewall", "ruleset", "allowedip", "add", "-r", "sshServer", "-i",
        "10.50.0.12"},
       "input",
       ssh_in},
      {{"network", "firewall", "ruleset", "allowedip", "remove", "-r", "sshServer", "-i",
        "192.168.10.0/24"},
       "input",
       ssh_in},
  };
  for (auto const& step : steps) {
    SCOPED_TRACE(step.args[2] + " " + step.args[3] + " " + step.args.back());
    Ok(step.args);
    EXPECT_EQ(ChainRules(step.chain), step.rules);
    ExpectListingsAgreeWithTable();
  }
  EXPECT_EQ(get(), json::parse(R"({"Loaded":true,"Enabled":true,"DefaultAction":"DROP"})"));
  EXPECT_EQ(Policy("input"), "drop");
  EXPECT_EQ(Policy("output"), "drop");
  EXPECT_EQ(Sets().at("sshServer-v4"), std::set<std::string>{"10.50.0.12"});
  EXPECT_EQ(Sets().at("sshServer-v6"), std::set<std::string>{"2001:db8:10::/64"});
  auto const allowed =
      Listing({"network", "firewall", "ruleset", "allowedip", "list", "-r", "sshServer"});
  EXPECT_EQ(allowed[0]["Allowed IP Addresses"], json::parse(R"(["10.50.0.12","2001:db8:10::/64"])"));

  // Clients: the first enables the ruleset, the last disables it; the
  // count is the host's own and a new process sees it.
  Ok({"network", "firewall", "ruleset", "client", "add", "-r", "ntpClient"});
  Ok({"network", "firewall", "ruleset", "client", "add", "-r", "ntpClient"});
  EXPECT_EQ(ChainRules("ntpClient-out"), std::vector<std::string>{"udp dport 123 accept"});
  auto output = ChainRules("output");
  EXPECT_NE(std::find(output.begin(), output.end(), "jump ntpClient-out"), output.end());
  OrvkCtl::Sim::ResetHostForTest();
  auto other = TestSupport::RunProcess(
      {"network", "firewall", "ruleset", "client", "get", "-r", "ntpClient", "--formatter", "json"});
  EXPECT_EQ(json::parse(other.out), json::parse(R"({"Ruleset Client Count":2})")) << other.err;
  Ok({"network", "firewall", "ruleset", "client", "remove", "-r", "ntpClient"});
  Ok({"network", "firewall", "ruleset", "client", "remove", "-r", "ntpClient"});
  output = ChainRules("output");
  EXPECT_EQ(std::find(output.begin(), output.end(), "jump ntpClient-out"), output.end());
  ExpectListingsAgreeWithTable();

  // The rules listing is the catalogue's, as the chains hold it.
  auto const rules = Listing({"network", "firewall", "ruleset", "rule", "list", "-r", "dhcpClient"});
  EXPECT_EQ(rules.size(), 3u);
  EXPECT_EQ(ChainRules("dhcpClient-in"), std::vector<std::string>{"udp dport 68 accept"});
  EXPECT_EQ(ChainRules("dhcpClient-out"),
            (std::vector<std::string>{"udp sport 68 accept", "udp dport 67 accept"}));

  Ok({"network", "firewall", "unload"});
  EXPECT_FALSE(TableExists());
  EXPECT_EQ(get(), json::parse(R"({"Loaded":false,"Enabled":false,"DefaultAction":"PASS"})"));
  Ok({"network", "firewall", "unload"});

  // What was configured comes back with the next load.
  Ok({"network", "firewall", "load"});
  EXPECT_EQ(ChainRules("input"), ssh_in);
  EXPECT_EQ(Sets().at("sshServer-v4"), std::set<std::string>{"10.50.0.12"});
}

// What nftables refuses, and what the host refuses before it, leave the
// table as it was.
TEST_F(FirewallTest, ARefusedChangeLeavesTheTableAsItWas) {
  Ok({"network", "firewall", "load"});
  Ok({"network", "firewall", "ruleset", "set", "-r", "sshServer", "-a", "false"});
  Ok({"network", "firewall", "ruleset", "allowedip", "add", "-r", "sshServer", "-i",
      "192.168.10.0/24"});
  std::string const table = Shell("nft -j list table inet toolbase");
  struct Case {
    TestSupport::Args args;
    std::string message;
  };
  std::vector<Case> const cases = {
      // An address inside a network the set holds: nftables' refusal.
      {{"network", "firewall", "ruleset", "allowedip", "add", "-r", "sshServer", "-i",
        "192.168.10.7"},
       "Cannot change the firewall table inet toolbase: "},
      {{"network", "firewall", "ruleset", "allowedip", "add", "-r", "sshServer", "-i", "300.1.1.1"},
       "Invalid ip address"},
      {{"network", "firewall", "ruleset", "set", "-r", "noSuchRuleset", "-e", "true"},
       "Invalid Ruleset Id."},
      {{"network", "firewall", "ruleset", "client", "remove", "-r", "sshServer"},
       "has no client to remove"},
  };
  for (auto const& test : cases) {
    SCOPED_TRACE(test.args.back());
    Refused(test.args, test.message);
    EXPECT_EQ(Shell("nft -j list table inet toolbase"), table);
  }
}

// A batch whose last line fails undoes the firewall's change with the rest:
// the table is back as it was, and so is the absence of one.
TEST_F(FirewallTest, AFailedBatchPutsTheTableBack) {
  std::string const batch = dir_ + "/batch";
  for (bool loaded : {false, true}) {
    SCOPED_TRACE(loaded ? "loaded" : "not loaded");
    if (loaded) Ok({"network", "firewall", "load"});
    json const before = loaded ? Items(false) : json();
    std::ofstream(batch) << (loaded ? "" : "network firewall load\n")
                         << "network firewall set --enabled true\n"
                            "network firewall ruleset set -r haAgent -e true\n"
                            "network firewall ruleset allowedip add -r haAgent -i bad\n";
    OrvkCtl::Sim::ResetHostForTest();
    auto run = TestSupport::RunProcess({"--batch", batch});
    EXPECT_NE(run.status, 0);
    EXPECT_NE(run.err.find("no change of the batch was applied"), std::string::npos)
        << run.out << run.err;
    EXPECT_EQ(TableExists(), loaded);
    if (loaded) {
      EXPECT_EQ(Items(false), before);
    }
  }
}

// A table someone edited by hand reads as well as it can: a chain pair the
// host did not make is a ruleset of its own, rules and elements it has no
// words for are left out, and a missing base chain reads as a firewall that
// is off.
TEST_F(FirewallTest, AHandEditedTableReadsAsFaithfullyAsItCan) {
  Ok({"network", "firewall", "load"});
  Shell("nft add chain inet toolbase custom-in && "
        "nft add rule inet toolbase custom-in tcp dport 9000-9009 accept && "
        "nft add rule inet toolbase custom-in ip saddr 1.2.3.4 drop && "
        "nft add rule inet toolbase input jump custom-in && "
        "nft add rule inet toolbase sshServer-in meta l4proto icmp accept && "
        "nft add element inet toolbase sshServer-v4 '{ 10.9.0.1-10.9.0.7 }'");
  OrvkCtl::Sim::ResetHostForTest();
  auto const rules =
      Listing({"network", "firewall", "ruleset", "rule", "list", "-r", "custom"});
  EXPECT_EQ(rules, json::parse(R"([{"Ruleset":"custom","Port Type":"Dst","Port Begin":9000,
                                    "Port End":9009,"Direction":"Inbound","Protocol":"TCP"}])"));
  auto const rulesets = Listing({"network", "firewall", "ruleset", "list", "-r", "custom"});
  EXPECT_EQ(rulesets[0]["Enabled"], true);
  EXPECT_EQ(Listing({"network", "firewall", "ruleset", "rule", "list", "-r", "sshServer"}).size(),
            1u);

  Shell("nft delete chain inet toolbase output && nft flush chain inet toolbase input && "
        "nft delete chain inet toolbase input");
  OrvkCtl::Sim::ResetHostForTest();
  EXPECT_EQ(Listing({"network", "firewall", "get"}),
            json::parse(R"({"Loaded":true,"Enabled":false,"DefaultAction":"PASS"})"));
  // The next change builds the table anew from what the host reads.
  Ok({"network", "firewall", "set", "--enabled", "true"});
  EXPECT_EQ(Policy("input"), "accept");
  EXPECT_EQ(ChainRules("custom-in"), std::vector<std::string>{"tcp dport 9000-9009 accept"});
}

// Rules added at run time are in force after a refresh as before it, in
// their order across the two directions, named by their comments.
TEST_F(FirewallTest, RefreshKeepsTheRulesAddedAtRunTime) {
  Ok({"network", "firewall", "load"});
  Shell("nft add rule inet toolbase dynamic-out udp dport 53 accept comment dns && "
        "nft add rule inet toolbase dynamic-in tcp sport 8080-8081 accept comment web");
  OrvkCtl::Sim::ResetHostForTest();
  Ok({"network", "firewall", "refresh"});
  EXPECT_EQ(ChainRules("dynamic-out"),
            std::vector<std::string>{"udp dport 53 accept comment \"dns\""});
  EXPECT_EQ(ChainRules("dynamic-in"),
            std::vector<std::string>{"tcp sport 8080-8081 accept comment \"web\""});
  std::map<int, std::string> by_handle;
  for (auto const& item : Items()) {
    if (item.contains("rule") && item["rule"].contains("comment")) {
      by_handle[item["rule"]["handle"]] = item["rule"]["comment"];
    }
  }
  EXPECT_EQ(by_handle.begin()->second, "dns");
  EXPECT_EQ(by_handle.size(), 2u);
}

// Only the firewall loads libnftables: other commands of the host do not.
TEST_F(FirewallTest, OnlyTheFirewallLoadsTheNftablesLibrary) {
  struct Case {
    TestSupport::Args args;
    bool loads;
  };
  for (auto const& test : std::vector<Case>{{{"network", "ip", "route", "ipv4", "list"}, false},
                                            {{"network", "nic", "list"}, false},
                                            {{"network", "firewall", "get"}, true}}) {
    SCOPED_TRACE(test.args[1]);
    auto run = TestSupport::RunProcess(test.args, {{"LD_DEBUG", "libs"}});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err.find("libnftables") != std::string::npos, test.loads);
  }
}

}  // namespace
}  // namespace LinuxTest
