// The port group commands against the simulated host.
#include <gtest/gtest.h>

#include "host_store.h"
#include "plugin/vswitch/vswitch_test_util.h"
#include "support/harness.h"

namespace {

using Args = std::vector<std::string>;
using Strings = std::vector<std::string>;
using VswitchTest::Field;
using VswitchTest::Root;
using VswitchTest::RootIsTrue;

Args Portgroup(Args const& rest) {
  Args args = {"network", "vswitch", "standard", "portgroup"};
  args.insert(args.end(), rest.begin(), rest.end());
  return args;
}

class PortGroupTest : public TestSupport::SeededHostTest {
 protected:
  std::string Get(std::string const& policy, std::string const& group, std::string const& field) {
    return Field(Root(Execute(Portgroup({"policy", policy, "get", "-p", group}))), field);
  }

  // The port group's stored shaping record, changed in place.
  void ChangeStoredShaping(std::string const& group,
                           std::function<void(OrvkCtl::Sim::ShapingPolicyState&)> const& change) {
    OrvkCtl::Sim::ChangeHost([&](OrvkCtl::Sim::HostModel& host) {
      change(OrvkCtl::Sim::FindPortGroup(host.vswitch, group)->shaping);
    });
  }
};

TEST_F(PortGroupTest, ListShowsTheDefaultHost) {
  auto result = Run(Portgroup({"list"}));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "Name                Virtual Switch  Active Clients  VLAN ID\n"
            "------------------  --------------  --------------  -------\n"
            "Management Network  vSwitch0        1               0\n"
            "VM Network          vSwitch0        2               0\n"
            "Storage Network     vSwitch1        0               20\n");
}

TEST_F(PortGroupTest, AddedGroupTakesAVlanAndGoesAway) {
  ASSERT_EQ(Run(Portgroup({"add", "-p", "Lab", "-v", "vSwitch1"})).status, 0);
  ASSERT_EQ(Run(Portgroup({"set", "-p", "Lab", "--vlan-id", "4095"})).status, 0);
  Reload();
  auto result = Run(Portgroup({"list"}));
  EXPECT_NE(result.out.find("Lab                 vSwitch1        0               4095\n"),
            std::string::npos)
      << result.out;
  // A new group inherits everything from its switch.
  EXPECT_EQ(Get("failover", "Lab", "Override Vswitch Uplinks"), "false");
  EXPECT_EQ(Get("security", "Lab", "Override Vswitch Allow Promiscuous"), "false");
  ASSERT_EQ(Run(Portgroup({"remove", "-p", "Lab", "-v", "vSwitch1"})).status, 0);
  EXPECT_EQ(Run(Portgroup({"list"})).out.find("Lab"), std::string::npos);
}

TEST_F(PortGroupTest, VlanIdOutsideTheLimitsIsAUsageError) {
  for (char const* vlan : {"4096", "-1", "65536"}) {
    SCOPED_TRACE(vlan);
    std::string before = StateFileText();
    EXPECT_EQ(Run(Portgroup({"set", "-p", "VM Network", std::string("--vlan-id=") + vlan})).status,
              2);
    EXPECT_EQ(StateFileText(), before);
  }
  auto result = Run(Portgroup({"set", "--help"}));
  EXPECT_NE(result.out.find("range (0 - 4095)"), std::string::npos) << result.out;
}

TEST_F(PortGroupTest, SetWithoutVlanIdFailsBeforeTheHost) {
  InjectFault("NetworkFactory::GetPortGroupByName", "host reached");
  std::string before = StateFileText();
  auto result = Run(Portgroup({"set", "-p", "VM Network"}));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "Error: parameter --vlan-id was not given\n");
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(PortGroupTest, UnknownGroupIsReportedByEveryCommandThatLooksItUp) {
  std::vector<Args> cases = {
      {"set", "-p", "Nope", "-v", "5"},
      {"policy", "failover", "get", "-p", "Nope"},
      {"policy", "failover", "set", "-p", "Nope", "-u"},
      {"policy", "security", "get", "-p", "Nope"},
      {"policy", "security", "set", "-p", "Nope", "-o", "true"},
      {"policy", "shaping", "get", "-p", "Nope"},
      {"policy", "shaping", "set", "-p", "Nope", "-e", "false"},
  };
  for (auto const& args : cases) {
    SCOPED_TRACE(args[0] + " " + args[1]);
    Refused(Portgroup(args), {"Unable to find a port group with the name Nope"});
  }
}

TEST_F(PortGroupTest, AddAndRemoveReportOnlyTheLibrarysWords) {
  struct Case {
    Args args;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"add", "-p", "Lab", "-v", "vSwitch9"}, "Virtual switch vSwitch9 not found"},
      {{"remove", "-p", "Lab", "-v", "vSwitch9"}, "Virtual switch vSwitch9 not found"},
      {{"add", "-p", "VM Network", "-v", "vSwitch1"},
       "A port group named VM Network already exists on virtual switch vSwitch0"},
      {{"remove", "-p", "VM Network", "-v", "vSwitch0"},
       "Unable to remove port group VM Network: it has 2 active clients"},
      {{"remove", "-p", "Storage Network", "-v", "vSwitch0"},
       "Port group Storage Network not found on virtual switch vSwitch0"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    Refused(Portgroup(c.args), {c.message});
  }
}

TEST_F(PortGroupTest, FailoverGetShowsTheSwitchValuesAndNoOverride) {
  auto result = Run(Portgroup({"policy", "failover", "get", "-p", "Management Network"}));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "Load Balancing: srcport\n"
            "Network Failure Detection: link\n"
            "Notify Switches: true\n"
            "Failback: true\n"
            "Active Adapters: ornic0\n"
            "Standby Adapters: ornic1\n"
            "Unused Adapters: \n"
            "Override Vswitch Load Balancing: false\n"
            "Override Vswitch Network Failure Detection: false\n"
            "Override Vswitch Notify Switches: false\n"
            "Override Vswitch Failback: false\n"
            "Override Vswitch Uplinks: false\n");
}

TEST_F(PortGroupTest, FailoverOverridesAreFieldByField) {
  auto set = [&](Args options) {
    Args args = {"policy", "failover", "set", "-p", "VM Network"};
    args.insert(args.end(), options.begin(), options.end());
    auto result = Run(Portgroup(args));
    ASSERT_EQ(result.status, 0) << result.err;
  };
  auto overrides = [&] {
    std::string flags;
    for (char const* field : {"Load Balancing", "Network Failure Detection", "Notify Switches",
                              "Failback", "Uplinks"}) {
      flags += Get("failover", "VM Network", std::string("Override Vswitch ") + field) == "true"
                   ? "1"
                   : "0";
    }
    return flags;
  };

  set({"--failback", "false"});
  EXPECT_EQ(overrides(), "00010");
  // The unnamed field stays inherited: a switch change shows through.
  ASSERT_EQ(Run({"network", "vswitch", "standard", "policy", "failover", "set", "-v", "vSwitch0",
                 "-l", "mac"})
                .status,
            0);
  EXPECT_EQ(Get("failover", "VM Network", "Load Balancing"), "srcmac");
  EXPECT_EQ(Get("failover", "VM Network", "Failback"), "false");

  set({"--active-uplinks", "ornic1"});
  EXPECT_EQ(overrides(), "00011");
  EXPECT_EQ(Get("failover", "VM Network", "Active Adapters"), "ornic1");
  EXPECT_EQ(Get("failover", "VM Network", "Unused Adapters"), "ornic0");

  set({"--use-vswitch", "--load-balancing=iphash"});
  EXPECT_EQ(overrides(), "10000");
  EXPECT_EQ(Get("failover", "VM Network", "Load Balancing"), "iphash");
  EXPECT_EQ(Get("failover", "VM Network", "Active Adapters"), "ornic0");

  set({"-u"});
  EXPECT_EQ(overrides(), "00000");
  EXPECT_EQ(Get("failover", "VM Network", "Load Balancing"), "srcmac");
}

TEST_F(PortGroupTest, FailoverNamesAreCheckedAgainstTheParentSwitch) {
  std::string before = StateFileText();
  auto output = Execute(Portgroup(
      {"policy", "failover", "set", "-p", "Storage Network", "-a", "ornic0", "-l", "mac"}));
  EXPECT_EQ(output->GetErrorMessages(), Strings{"NIC is not connected to the vswitch : ornic0"});
  EXPECT_TRUE(RootIsTrue(output));
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(PortGroupTest, SecurityOverridesAndReset) {
  ASSERT_EQ(
      Run(Portgroup({"policy", "security", "set", "-p", "VM Network", "-o", "true", "-m", "false"}))
          .status,
      0);
  auto result = Run(Portgroup({"policy", "security", "get", "-p", "VM Network"}));
  EXPECT_EQ(result.out,
            "Allow Promiscuous: true\n"
            "Allow MAC Address Change: false\n"
            "Allow Forged Transmits: false\n"
            "Override Vswitch Allow Promiscuous: true\n"
            "Override Vswitch Allow MAC Address Change: true\n"
            "Override Vswitch Allow Forged Transmits: false\n");
  ASSERT_EQ(Run(Portgroup({"policy", "security", "set", "-p", "VM Network", "--use-vswitch", "-f",
                           "true"}))
                .status,
            0);
  EXPECT_EQ(Get("security", "VM Network", "Allow Promiscuous"), "false");
  EXPECT_EQ(Get("security", "VM Network", "Allow Forged Transmits"), "true");
  EXPECT_EQ(Get("security", "VM Network", "Override Vswitch Allow Promiscuous"), "false");
  EXPECT_EQ(Get("security", "VM Network", "Override Vswitch Allow Forged Transmits"), "true");
}

TEST_F(PortGroupTest, ShapingOverridesShowTheirBits) {
  ASSERT_EQ(Run(Portgroup({"policy", "shaping", "set", "-p", "VM Network", "--enabled", "true",
                           "--avg-bandwidth=1", "--peak-bandwidth=2", "--burst-size=3"}))
                .status,
            0);
  auto result = Run(Portgroup({"policy", "shaping", "get", "-p", "VM Network"}));
  EXPECT_EQ(result.out,
            "Enabled: true\n"
            "Average Bandwidth: 1 Kbps\n"
            "Peak Bandwidth: 2 Kbps\n"
            "Burst Size: 3 Kib\n"
            "Override Vswitch Enabled: true\n"
            "Override Vswitch Average Bandwidth: true\n"
            "Override Vswitch Peak Bandwidth: true\n"
            "Override Vswitch Burst Size: true\n");
  // Off on the group: only the enabled bit, no check of values.
  ASSERT_EQ(
      Run(Portgroup({"policy", "shaping", "set", "-p", "Storage Network", "--enabled", "false"}))
          .status,
      0);
  EXPECT_EQ(Get("shaping", "Storage Network", "Override Vswitch Enabled"), "true");
  EXPECT_EQ(Get("shaping", "Storage Network", "Override Vswitch Peak Bandwidth"), "false");
  EXPECT_EQ(Get("shaping", "Storage Network", "Average Bandwidth"), "-1");
}

TEST_F(PortGroupTest, EnabledShapingNeedsEveryValueSomewhere) {
  // The group turns shaping on for itself without values of its own.
  ChangeStoredShaping("VM Network", [](OrvkCtl::Sim::ShapingPolicyState& shaping) {
    shaping = {0x8, true, 0, 0, 0};
  });
  std::string before = StateFileText();
  auto output = Execute(Portgroup({"policy", "shaping", "set", "-p", "VM Network", "-k", "5"}));
  EXPECT_EQ(
      output->GetErrorMessages(),
      (Strings{"Unable to set shaping policy. An Average BPS value must be set on either this "
               "port group or on the parent virtual switch.",
               "Unable to set shaping policy. A Burst Size value must be set on either this "
               "port group or on the parent virtual switch."}));
  EXPECT_TRUE(RootIsTrue(output));
  EXPECT_EQ(StateFileText(), before);

  // Values set on the switch are inherited and satisfy the check.
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    auto& shaping = OrvkCtl::Sim::FindStandardSwitch(host.vswitch, "vSwitch0")->shaping;
    shaping = {0xf, false, 8000, 4000, 1280};
  });
  output = Execute(Portgroup({"policy", "shaping", "set", "-p", "VM Network", "-k", "5"}));
  EXPECT_TRUE(output->GetErrorMessages().empty());
  EXPECT_EQ(Get("shaping", "VM Network", "Average Bandwidth"), "4");
  EXPECT_EQ(Get("shaping", "VM Network", "Peak Bandwidth"), "5");
  EXPECT_EQ(Get("shaping", "VM Network", "Burst Size"), "10");
  EXPECT_EQ(Get("shaping", "VM Network", "Override Vswitch Average Bandwidth"), "false");
}

TEST_F(PortGroupTest, MissingValuesAreReportedByKitAndCheckTogether) {
  std::string before = StateFileText();
  auto output = Execute(
      Portgroup({"policy", "shaping", "set", "-p", "VM Network", "-e", "true", "-b", "100"}));
  EXPECT_EQ(
      output->GetErrorMessages(),
      (Strings{"Missing required parameter --peak-bandwidth",
               "Missing required parameter --burst-size",
               "Unable to set shaping policy. A Peak BPS value must be set on either this port "
               "group or on the parent virtual switch.",
               "Unable to set shaping policy. A Burst Size value must be set on either this "
               "port group or on the parent virtual switch."}));
  EXPECT_TRUE(RootIsTrue(output));
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(PortGroupTest, HostFailuresBecomeTheMessage) {
  struct Case {
    Args args;
    char const* operation;
  };
  std::vector<Case> cases = {
      {{"add", "-p", "Lab", "-v", "vSwitch1"}, "VirtualSwitchImpl::AddPortGroup"},
      {{"remove", "-p", "Storage Network", "-v", "vSwitch1"}, "VirtualSwitchImpl::RemovePortGroup"},
      {{"set", "-p", "VM Network", "-v", "3"}, "PortGroupImpl::SetVlanId"},
      {{"set", "-p", "VM Network", "-v", "3"}, "NetworkFactory::GetPortGroupByName"},
      {{"list"}, "NetworkInfoImpl::GetAllPortGroups"},
      {{"list"}, "PortGroupImpl::GetNumActiveClients"},
      {{"policy", "failover", "get", "-p", "VM Network"}, "PortGroupImpl::GetVirtualSwitch"},
      {{"policy", "failover", "set", "-p", "VM Network", "-u"},
       "PortGroupImpl::ApplyTeamingPolicy"},
      {{"policy", "security", "get", "-p", "VM Network"},
       "PortGroupImpl::GetConfiguredSecurityPolicy"},
      {{"policy", "security", "set", "-p", "VM Network", "-u"},
       "PortGroupImpl::ApplySecurityPolicy"},
      {{"policy", "shaping", "get", "-p", "VM Network"},
       "PortGroupImpl::GetEffectiveShapingPolicy"},
      {{"policy", "shaping", "set", "-p", "VM Network", "-u"}, "PortGroupImpl::ApplyShapingPolicy"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    ClearFaults();
    InjectFault(c.operation, "port table busy");
    auto output = Execute(Portgroup(c.args));
    EXPECT_EQ(output->GetErrorMessages(), Strings{"port table busy"});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
}

}  // namespace
