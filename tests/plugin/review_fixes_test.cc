// Findings of a review of the landed commands, each end to end: the command
// line, the message the user reads, and what the host holds afterwards.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/harness.h"

namespace {

using TestSupport::HostTest;
using TestSupport::SeededHostTest;
using TestSupport::Args;
using TestSupport::Messages;

class ReviewFixesTest : public SeededHostTest {
 protected:
  // Expects the command to fail with `status` and `message` on standard
  // error, printing nothing, and to leave the state file as it was.
  void ExpectRefused(Args const& args, int status, std::string const& message) {
    SCOPED_TRACE(testing::PrintToString(args));
    std::string const before = StateFileText();
    auto const result = Run(args);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("json.exception"), std::string::npos) << result.err;
    EXPECT_EQ(StateFileText(), before);
  }

  std::string Out(Args const& args) {
    auto const result = Run(args);
    EXPECT_EQ(result.status, 0) << testing::PrintToString(args) << ": " << result.err;
    return result.out;
  }
};

// The MAC address is checked before any connection point is built, so its
// message comes first and a DVPort keeps its connection id.
TEST_F(ReviewFixesTest, InterfaceAddChecksTheMacBeforeTheConnectionPoint) {
  Args const add = {"network", "ip", "interface", "add"};
  for (Args const& where : {Args{"--portgroup-name", "nosuchpg", "--mac-address", "not-a-mac"},
                            Args{"-s", "DSwitch-Prod", "-P", "3", "-M", "bad"}}) {
    Args args = add;
    args.insert(args.end(), where.begin(), where.end());
    ExpectRefused(args, 1, "Invalid unicast MAC address specified.");
  }
}

TEST_F(ReviewFixesTest, TextThatIsNotUtf8IsAUsageErrorNamingTheParameter) {
  std::string const bad = "bad\xff" "name";
  ExpectRefused({"network", "ip", "netstack", "set", "-N", "livehop", "-n", bad}, 2,
                "Parameter --name expects UTF-8 text");
  ExpectRefused({"network", "vswitch", "standard", "add", "-v", bad}, 2,
                "Parameter --vswitch-name expects UTF-8 text");
  ExpectRefused({"network", "vswitch", "standard", "portgroup", "add", "-v", "vSwitch1", "-p", bad},
                2, "Parameter --portgroup-name expects UTF-8 text");
}

// A number read for a narrower host field goes to the host narrowed, as the
// host record holds it, and the host decides: what it cannot take it refuses
// with its own words, what fits after narrowing it takes.
TEST_F(ReviewFixesTest, NumbersGoToTheHostNarrowed) {
  struct Case {
    Args args;
    Messages messages;  // empty: the command succeeds
    Args check = {};    // what shows the narrowed value, and its root
    std::string shown = "";
  };
  std::vector<Case> const cases = {
      {{"network", "ens", "lcore", "affinity", "set", "-l", "2", "-a", "4294967297"},
       {},
       {"network", "ens", "lcore", "affinity", "get", "-l", "2"},
       "1"},
      {{"network", "ens", "lcore", "affinity", "set", "-l", "2", "-a", "4294967295"},
       {"NUMA node -1 does not exist: the host has 2 NUMA nodes"}},
      {{"network", "vswitch", "dvs", "corvane", "lacp", "timeout", "set", "-t", "1",
        "--lag-id=-1", "-s", "DSwitch-Prod"},
       {"No running LAG with ID 4294967295 on DSwitch-Prod"}},
      {{"network", "ip", "ipsec", "sp", "add", "-n", "sp-new", "-s", "2001:db8:10::21/128", "-d",
        "2001:db8:10::/64", "--source-port=-1", "-P", "22", "-u", "tcp"},
       {"Invalid port: ports must be between 0 and 65535"}},
      {{"network", "nic", "ring", "current", "set", "-n", "ornic0", "-r", "4294967291"},
       {"RX ring size 4294967291 of ornic0 exceeds the preset maximum of 4096"}},
      {{"network", "nic", "coalesce", "low", "set", "-n", "ornic0", "-t", "4294967296"},
       {},
       {"network", "nic", "coalesce", "low", "get", "-n", "ornic0"},
       "TX delay time=0"},
      {{"network", "nic", "coalesce", "set", "-n", "ornic0", "-r", "-1"},
       {"RX microseconds 4294967295 of ornic0 is beyond the maximum of 8191"}},
      {{"network", "nic", "set", "-n", "ornic0", "-P", "4294967297"},
       {},
       {"network", "nic", "get", "-n", "ornic0"},
       "PHY Address=1"},
      {{"network", "ip", "netstack", "set", "-N", "livehop", "-m", "4294968296"},
       {},
       {"network", "ip", "netstack", "get", "-N", "livehop"},
       "Max Connections=1000"},
      {{"network", "ip", "interface", "set", "-i", "orvk0", "-m", "4294967297"},
       {"Invalid MTU 1 for orvk0: it must be between 1280 and 9000"}},
      {{"network", "vswitch", "standard", "set", "-v", "vSwitch0", "--mtu=4294968796"},
       {},
       {"network", "vswitch", "standard", "list", "-v", "vSwitch0"},
       "MTU=1500"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.args));
    if (!c.messages.empty()) {
      Refused(c.args, c.messages);
      continue;
    }
    EXPECT_EQ(Ok(c.args), "true");
    Reload();
    std::string const shown = Ok(c.check);
    EXPECT_NE(shown.find(c.shown), std::string::npos) << shown;
  }
  // The checks the commands have of their own still come first.
  Refused({"network", "ip", "interface", "set", "-i", "orvk0", "-m", "-4294967297"},
          {"MTU size should be a positive value"});
  Refused({"network", "nic", "coalesce", "high", "set", "-n", "nosuch", "-p", "-5"},
          {"Pnic with name nosuch not found"});
}

TEST_F(ReviewFixesTest, ANicServesOneSwitchAtATime) {
  ExpectRefused({"network", "vswitch", "standard", "uplink", "add", "-v", "vSwitch1", "-u",
                 "ornic2"},
                1, "Unable to add uplink ornic2: it is already an uplink of DSwitch-Prod");
}

// Without its only active uplink the switch's failover order promotes the
// first standby instead of keeping no active adapter at all.
TEST_F(ReviewFixesTest, RemovingTheOnlyActiveUplinkPromotesTheFirstStandby) {
  Out({"network", "vswitch", "standard", "uplink", "remove", "-v", "vSwitch0", "-u", "ornic0"});
  Reload();
  auto const text = Out({"network", "vswitch", "standard", "policy", "failover", "get", "-v",
                         "vSwitch0"});
  EXPECT_NE(text.find("Active Adapters: ornic1\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Standby Adapters: \n"), std::string::npos) << text;
}

// MAC addresses are unique across every NIC, physical ones included.
TEST_F(ReviewFixesTest, NewInterfacesNeverTakeAPhysicalNicsMac) {
  ExpectRefused({"network", "ip", "interface", "add", "-p", "VM Network", "-M",
                 "D2:6E:A0:00:10:01"},
                1, "MAC address d2:6e:a0:00:10:01 is already in use by ornic1");
  Out({"network", "ip", "interface", "add", "-p", "VM Network"});
  auto const interfaces = Out({"--formatter", "csv", "network", "ip", "interface", "list"});
  auto const nics = Out({"--formatter", "csv", "network", "nic", "list"});
  // Each MAC of a NIC appears once in the interface list at most (orvk0 and
  // its uplink share the management address by design of the default host).
  EXPECT_EQ(interfaces.find("d2:6e:a0:00:10:01"), std::string::npos) << interfaces;
  EXPECT_NE(nics.find("d2:6e:a0:00:10:01"), std::string::npos) << nics;
  EXPECT_NE(interfaces.find("orvk1"), std::string::npos) << interfaces;
}

TEST_F(ReviewFixesTest, TableFormatterKeepsTheIdentifyingHeading) {
  auto const stats = Out({"--formatter", "table", "network", "nic", "stats", "get", "-n", "ornic0"});
  EXPECT_EQ(stats.rfind("NIC statistics for ornic0\n", 0), 0u) << stats;
  auto const vlan = Out({"network", "nic", "vlan", "stats", "get", "-n", "ornic0",
                         "--formatter", "table"});
  EXPECT_EQ(vlan.rfind("VLAN 0\n", 0), 0u) << vlan;
}

}  // namespace
