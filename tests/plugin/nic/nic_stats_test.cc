// NIC counters and the per-VLAN counters kept by the switches.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_store.h"
#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using TestSupport::HostTest;
using TestSupport::MetaText;

class NicStatsTest : public HostTest {
 protected:
  std::vector<std::string> Errors(std::vector<std::string> const& args) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetRootObject(), nullptr);
    return output->GetErrorMessages();
  }
};

TEST_F(NicStatsTest, CountersArePrintedUnderTheirHeading) {
  auto result = Run({"network", "nic", "stats", "get", "-n", "ornic0"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.substr(0, result.out.find('\n')), "NIC statistics for ornic0");
  EXPECT_EQ(result.out.find("NIC Name"), std::string::npos) << result.out;
  // Received before sent, and carrier before FIFO errors, unlike the record.
  std::vector<std::string> lines = {
      "Packets received: 18442311",   "Packets sent: 9120477",
      "Bytes received: 22190334871",  "Bytes sent: 3411872650",
      "Receive packets dropped: 112", "Multicast packets received: 183004",
      "Total receive errors: 27",     "Receive CRC errors: 21",
      "Receive frame errors: 6",      "Transmit carrier errors: 0",
      "Transmit window errors: 0"};
  size_t at = 0;
  for (auto const& line : lines) {
    SCOPED_TRACE(line);
    auto found = result.out.find(line, at);
    ASSERT_NE(found, std::string::npos) << result.out;
    at = found;
  }

  auto usb = Ok({"network", "nic", "stats", "get", "-n", "ornic4"});
  EXPECT_NE(usb.find("NIC Name=ornic4,"), std::string::npos) << usb;
  EXPECT_NE(usb.find("Total transmit errors=4,Transmit aborted errors=0,"
                     "Transmit carrier errors=4,Transmit FIFO errors=0"),
            std::string::npos)
      << usb;
}

TEST_F(NicStatsTest, StatsFailuresCarryThePrefix) {
  EXPECT_EQ(Errors({"network", "nic", "stats", "get", "-n", "ornic9"}),
            std::vector<std::string>{"Unable to get stats for NIC: Physical NIC ornic9 not found"});
  InjectFault("PnicImpl::GetPnicStats", "counters unavailable");
  EXPECT_EQ(Errors({"network", "nic", "stats", "get", "-n", "ornic0"}),
            std::vector<std::string>{"Unable to get stats for NIC: counters unavailable"});
}

TEST_F(NicStatsTest, VlanStatsOfTheDefaultHost) {
  auto result = Run({"network", "nic", "vlan", "stats", "get", "-n", "ornic0"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.substr(0, result.out.find('\n')), "VLAN 0");
  EXPECT_NE(result.out.find("Packets received: 18442311"), std::string::npos) << result.out;
  EXPECT_EQ(result.out.find("VLAN ID"), std::string::npos) << result.out;

  struct Case {
    char const* nic;
    char const* message;
  };
  std::vector<Case> cases = {
      {"ornic1", "VLAN stats are disabled for ornic1 please enable them first."},
      {"ornic4", "ornic4 is not a valid NIC connected to any virtual switch."},
      {"ornic9", "ornic9 is not a valid NIC connected to any virtual switch."},
      {"ORNIC0", "ORNIC0 is not a valid NIC connected to any virtual switch."},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.nic);
    EXPECT_EQ(Errors({"network", "nic", "vlan", "stats", "get", "-n", c.nic}),
              std::vector<std::string>{c.message});
  }
}

TEST_F(NicStatsTest, EnablingStartsCountersForTheSwitchVlans) {
  EXPECT_EQ(Ok({"network", "nic", "vlan", "stats", "set", "-n", "ornic1", "-e", "true"}), "true");
  EXPECT_EQ(Ok({"network", "nic", "vlan", "stats", "get", "-n", "ornic1"}),
            "[{VLAN ID=0,Packets received=0,Packets sent=0}]");

  // A port group on another VLAN is counted from the next start.
  ASSERT_EQ(
      Run({"network", "vswitch", "standard", "portgroup", "add", "-p", "Backup", "-v", "vSwitch0"})
          .status,
      0);
  ASSERT_EQ(Run({"network", "vswitch", "standard", "portgroup", "set", "-p", "Backup", "--vlan-id",
                 "300"})
                .status,
            0);
  EXPECT_EQ(Ok({"network", "nic", "vlan", "stats", "set", "-n", "ornic0", "-e", "false"}), "true");
  EXPECT_EQ(
      Errors({"network", "nic", "vlan", "stats", "get", "-n", "ornic0"}),
      std::vector<std::string>{"VLAN stats are disabled for ornic0 please enable them first."});
  EXPECT_EQ(Ok({"network", "nic", "vlan", "stats", "set", "-n", "ornic0", "-e", "true"}), "true");
  EXPECT_EQ(Ok({"network", "nic", "vlan", "stats", "get", "-n", "ornic0"}),
            "[{VLAN ID=0,Packets received=0,Packets sent=0},"
            "{VLAN ID=300,Packets received=0,Packets sent=0}]");

  // Enabling what is on keeps the counters.
  Execute({"network", "nic", "vlan", "stats", "set", "-n", "ornic1", "-e", "true"});
  EXPECT_EQ(FindPnic(OrvkCtl::Sim::ReadHost().nic, "ornic1")->vlan_stats.size(), 1u);
}

TEST_F(NicStatsTest, VlanSetNeedsAConnectedUplink) {
  Execute({"network", "nic", "list"});
  std::string before = StateFileText();
  EXPECT_EQ(Errors({"network", "nic", "vlan", "stats", "set", "-n", "ornic4", "-e", "true"}),
            std::vector<std::string>{"ornic4 is not a valid NIC connected to any virtual switch."});
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(NicStatsTest, VlanHandlersCarryTheirPrefix) {
  struct Case {
    std::vector<std::string> args;
    char const* operation;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"network", "nic", "vlan", "stats", "get", "-n", "ornic0"},
       "VirtualSwitchInfoImpl::GetAllSwitches",
       "Unable to get VLAN stats: switch table busy"},
      {{"network", "nic", "vlan", "stats", "get", "-n", "ornic0"},
       "Portset::GetUplinkVlanStats",
       "Unable to get VLAN stats: switch table busy"},
      {{"network", "nic", "vlan", "stats", "set", "-n", "ornic0", "-e", "false"},
       "PortsetImpl::GetConnectedUplinks",
       "Unable to set VLAN stats: switch table busy"},
      {{"network", "nic", "vlan", "stats", "set", "-n", "ornic0", "-e", "false"},
       "Portset::SetUplinkVlanStats",
       "Unable to set VLAN stats: switch table busy"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    ClearFaults();
    InjectFault(c.operation, "switch table busy");
    auto result = Run(c.args);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, std::string(c.message) + "\n");
  }
  ClearFaults();
  EXPECT_TRUE(FindPnic(OrvkCtl::Sim::ReadHost().nic, "ornic0")->vlan_stats_enabled);
}

}  // namespace
