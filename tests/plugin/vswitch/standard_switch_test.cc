// The standard switch commands against the simulated host.
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

Args Standard(Args const& rest) {
  Args args = {"network", "vswitch", "standard"};
  args.insert(args.end(), rest.begin(), rest.end());
  return args;
}

class StandardSwitchTest : public TestSupport::SeededHostTest {
 protected:
  // One field of the switch's record in `list`.
  std::string ListField(std::string const& name, std::string const& field) {
    auto output = Execute(Standard({"list", "-v", name}));
    auto list = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaList>(output->GetRootObject());
    if (!list || list->GetCount() != 1) return "(no record)";
    return Field(std::static_pointer_cast<Toolbase::MetaObj::MetaStruct>(list->GetItems()[0]),
                 field);
  }

  std::string FailoverField(std::string const& name, std::string const& field) {
    return Field(Root(Execute(Standard({"policy", "failover", "get", "-v", name}))), field);
  }
};

TEST_F(StandardSwitchTest, ListShowsTheDefaultHost) {
  auto result = Run(Standard({"list", "--vswitch-name", "vSwitch0"}));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "vSwitch0\n"
            "   Name: vSwitch0\n"
            "   Class: orvkswitch\n"
            "   Num Ports: 136\n"
            "   Used Ports: 6\n"
            "   Configured Ports: 128\n"
            "   MTU: 1500\n"
            "   CDP Status: listen\n"
            "   Beacon Enabled: false\n"
            "   Beacon Interval: 1\n"
            "   Beacon Threshold: 3\n"
            "   Beacon Required By: \n"
            "   Uplinks: ornic0, ornic1\n"
            "   Portgroups: Management Network, VM Network\n");
  result = Run(Standard({"list"}));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("\nvSwitch1\n   Name: vSwitch1\n"), std::string::npos) << result.out;
}

TEST_F(StandardSwitchTest, ListOfAnUnknownNameIsEmptyWithOneMessage) {
  auto output = Execute(Standard({"list", "-v", "vSwitch9"}));
  EXPECT_EQ(output->GetErrorMessages(), Strings{"Unable to access all portsets"});
  auto list = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaList>(output->GetRootObject());
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->GetCount(), 0u);
}

TEST_F(StandardSwitchTest, ListShowsOnlyUplinksThatArePhysicalNics) {
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    host.vswitch.standard_switches[0].uplinks = {"ornic0", "orlag0", "ornic1"};
  });
  EXPECT_EQ(ListField("vSwitch0", "Uplinks"), "ornic0,ornic1");
}

TEST_F(StandardSwitchTest, AddedSwitchIsListedUntilRemoved) {
  ASSERT_EQ(Run(Standard({"add", "-v", "vSwitch2", "--ports", "64"})).status, 0);
  ASSERT_EQ(Run(Standard({"add", "-v", "vSwitch3"})).status, 0);
  Reload();
  EXPECT_EQ(ListField("vSwitch2", "Configured Ports"), "64");
  EXPECT_EQ(ListField("vSwitch3", "Configured Ports"), "128");
  EXPECT_EQ(ListField("vSwitch3", "Uplinks"), "");
  EXPECT_EQ(FailoverField("vSwitch3", "Load Balancing"), "srcport");

  auto result = Run(Standard({"remove", "-v", "vSwitch2"}));
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(ListField("vSwitch2", "Name"), "(no record)");
}

TEST_F(StandardSwitchTest, NameLengthIsCheckedBeforeTheHost) {
  InjectFault("VirtualSwitchInfoImpl::AddVirtualSwitchWithPolicy", "host reached");
  auto output = Execute(Standard({"add", "-v", std::string(128, 'x')}));
  EXPECT_EQ(output->GetErrorMessages(),
            Strings{"The virtual switch name exceeds the maximum allowed length. "});
  EXPECT_EQ(output->GetRootObject(), nullptr);
  output = Execute(Standard({"add", "-v", std::string(127, 'x')}));
  EXPECT_EQ(output->GetErrorMessages(), Strings{"host reached"});
  ClearFaults();
  EXPECT_TRUE(RootIsTrue(Execute(Standard({"add", "-v", std::string(127, 'x')}))));
}

TEST_F(StandardSwitchTest, PortCountOutsideTheRangeIsAUsageError) {
  for (char const* ports : {"0", "4097", "-5"}) {
    SCOPED_TRACE(ports);
    auto result = Run(Standard({"add", "-v", "vSwitch2", "-P", ports}));
    EXPECT_EQ(result.status, 2);
  }
  EXPECT_EQ(Run(Standard({"add", "-v", "vSwitch2", "-P", "4096"})).status, 0);
}

TEST_F(StandardSwitchTest, MissingSwitchIsReportedInEachCommandsWords) {
  struct Case {
    Args args;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"remove", "-v", "vSwitch9"}, "Unable to find virtual switch with the name vSwitch9"},
      {{"set", "-v", "vSwitch9", "--mtu", "9000"},
       "vSwitch9 is not a valid name for a virtual switch"},
      {{"policy", "failover", "get", "-v", "vSwitch9"},
       "Unable to find a legacy virtual switch with the name vSwitch9"},
      {{"policy", "failover", "set", "-v", "vSwitch9", "-l", "mac"},
       "Unable to find a legacy virtual switch with the name vSwitch9"},
      {{"policy", "security", "get", "-v", "vSwitch9"},
       "Unable to find a legacy virtual switch with the name vSwitch9"},
      {{"policy", "security", "set", "-v", "vSwitch9", "-p", "true"},
       "Unable to find a legacy virtual switch with the name vSwitch9"},
      {{"policy", "shaping", "get", "-v", "vSwitch9"},
       "Unable to find a legacy virtual switch with the name vSwitch9"},
      {{"policy", "shaping", "set", "-v", "vSwitch9", "-e", "false"},
       "Unable to find a legacy virtual switch with the name vSwitch9"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.args[0] + " " + c.args[1]);
    Refused(Standard(c.args), {c.message});
  }
}

TEST_F(StandardSwitchTest, SetChangesMtuAndCdpStatus) {
  struct Case {
    char const* word;
    char const* shown;
  };
  for (auto const& c : std::vector<Case>{
           {"down", "down"}, {"advertise", "advertise"}, {"both", "both"}, {"listen", "listen"}}) {
    SCOPED_TRACE(c.word);
    ASSERT_EQ(Run(Standard({"set", "-v", "vSwitch1", "-c", c.word})).status, 0);
    EXPECT_EQ(ListField("vSwitch1", "CDP Status"), c.shown);
  }
  EXPECT_EQ(Run(Standard({"set", "-v", "vSwitch1", "-c", "loud"})).status, 2);
  ASSERT_EQ(Run(Standard({"set", "-v", "vSwitch1", "--mtu", "1280"})).status, 0);
  EXPECT_EQ(ListField("vSwitch1", "MTU"), "1280");
  // Nothing asked: nothing done, and still true.
  InjectFault("VirtualSwitchImpl::SetMTU", "must not be called");
  InjectFault("VirtualSwitchImpl::SetCdpStatus", "must not be called");
  EXPECT_TRUE(RootIsTrue(Execute(Standard({"set", "-v", "vSwitch1"}))));
}

TEST_F(StandardSwitchTest, NegativeMtuStopsBeforeTheCdpStatus) {
  std::string before = StateFileText();
  auto output = Execute(Standard({"set", "-v", "vSwitch0", "--mtu=-1", "--cdp-status", "both"}));
  EXPECT_EQ(output->GetErrorMessages(), Strings{"MTU size should be a positive value"});
  EXPECT_EQ(output->GetRootObject(), nullptr);
  EXPECT_EQ(StateFileText(), before);
  // Zero passes the command's test and meets the library's.
  output = Execute(Standard({"set", "-v", "vSwitch0", "--mtu", "0", "--cdp-status", "both"}));
  EXPECT_EQ(output->GetErrorMessages(),
            Strings{"Invalid MTU 0 for virtual switch vSwitch0: it must be between 1280 and 9000"});
  EXPECT_EQ(ListField("vSwitch0", "CDP Status"), "listen");
}

TEST_F(StandardSwitchTest, MtuStaysSetWhenTheCdpStatusFails) {
  InjectFault("VirtualSwitchImpl::SetCdpStatus", "CDP daemon not running");
  auto result = Run(Standard({"set", "-v", "vSwitch0", "-m", "9000", "-c", "down"}));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "CDP daemon not running\n");
  ClearFaults();
  EXPECT_EQ(ListField("vSwitch0", "MTU"), "9000");
}

TEST_F(StandardSwitchTest, UplinksComeAndGo) {
  ASSERT_EQ(Run(Standard({"uplink", "add", "-v", "vSwitch1", "-u", "ornic4"})).status, 0);
  EXPECT_EQ(ListField("vSwitch1", "Uplinks"), "ornic4");
  // Without an order of its own the switch uses the new uplink at once.
  EXPECT_EQ(FailoverField("vSwitch1", "Active Adapters"), "ornic4");
  // vSwitch0 has an order: a new uplink stays unused until the policy names it.
  ASSERT_EQ(Run(Standard({"uplink", "remove", "-v", "vSwitch1", "-u", "ornic4"})).status, 0);
  ASSERT_EQ(Run(Standard({"uplink", "add", "-v", "vSwitch0", "-u", "ornic4"})).status, 0);
  EXPECT_EQ(FailoverField("vSwitch0", "Unused Adapters"), "ornic4");

  // Without its only active uplink the first standby takes over.
  ASSERT_EQ(Run(Standard({"uplink", "remove", "-v", "vSwitch0", "-u", "ornic0"})).status, 0);
  EXPECT_EQ(ListField("vSwitch0", "Uplinks"), "ornic1,ornic4");
  EXPECT_EQ(FailoverField("vSwitch0", "Active Adapters"), "ornic1");
  EXPECT_EQ(FailoverField("vSwitch0", "Standby Adapters"), "");
}

TEST_F(StandardSwitchTest, UplinkRefusalsAreTheLibrarys) {
  struct Case {
    Args args;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"uplink", "add", "-v", "vSwitch1", "-u", "ornic0"},
       "Unable to add uplink ornic0: it is already an uplink of vSwitch0"},
      {{"uplink", "add", "-v", "vSwitch1", "-u", "ornic9"},
       "Unable to add uplink ornic9: no physical NIC of that name"},
      {{"uplink", "add", "-v", "vSwitch9", "-u", "ornic2"}, "Virtual switch vSwitch9 not found"},
      {{"uplink", "remove", "-v", "vSwitch1", "-u", "ornic0"},
       "Uplink ornic0 is not connected to virtual switch vSwitch1"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    Refused(Standard(c.args), {c.message});
  }
}

TEST_F(StandardSwitchTest, FailoverSetMergesWithTheOrderInForce) {
  struct Case {
    Args options;
    char const* active;
    char const* standby;
    char const* unused;
  };
  // In turn, from the default vSwitch0: ornic0 active, ornic1 standby.
  std::vector<Case> cases = {
      {{"--active-uplinks", "ornic1"}, "ornic1", "", "ornic0"},
      {{"-a", "ornic0", "-s", "ornic1"}, "ornic0", "ornic1", ""},
      {{"--standby-uplinks", "ornic0"}, "", "ornic0", "ornic1"},
      {{"--active-uplinks=ornic1,ornic0"}, "ornic1,ornic0", "", ""},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.options[0]);
    Args args = {"policy", "failover", "set", "-v", "vSwitch0"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    auto result = Run(Standard(args));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(FailoverField("vSwitch0", "Active Adapters"), c.active);
    EXPECT_EQ(FailoverField("vSwitch0", "Standby Adapters"), c.standby);
    EXPECT_EQ(FailoverField("vSwitch0", "Unused Adapters"), c.unused);
  }
}

TEST_F(StandardSwitchTest, FailoverSetShowsInGet) {
  ASSERT_EQ(Run(Standard({"policy", "failover", "set", "-v", "vSwitch0", "-l", "explicit", "-f",
                          "beacon", "-n", "false", "-b", "false"}))
                .status,
            0);
  auto result = Run(Standard({"policy", "failover", "get", "-v", "vSwitch0"}));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "Load Balancing: explicit\n"
            "Network Failure Detection: beacon\n"
            "Notify Switches: false\n"
            "Failback: false\n"
            "Active Adapters: ornic0\n"
            "Standby Adapters: ornic1\n"
            "Unused Adapters: \n");
  EXPECT_EQ(ListField("vSwitch0", "Beacon Required By"), "vSwitch0");
  EXPECT_EQ(ListField("vSwitch0", "Beacon Enabled"), "true");
}

TEST_F(StandardSwitchTest, PolicyErrorsWriteNothingButStillReportTrue) {
  struct Case {
    Args args;
    Strings messages;
  };
  std::vector<Case> cases = {
      {{"policy", "failover", "set", "-v", "vSwitch0", "-a", "ornic9,ornic2", "-l", "iphash"},
       {"Unknown NIC name in active uplinks : ornic9",
        "NIC is not connected to the vswitch : ornic2"}},
      {{"policy", "failover", "set", "-v", "vSwitch0", "-a", "ornic0", "-s", "ornic0"},
       {"some NICs appear in the input for more than once."}},
      {{"policy", "shaping", "set", "-v", "vSwitch0", "--enabled", "true", "-k", "5"},
       {"Missing required parameter --avg-bandwidth", "Missing required parameter --burst-size"}},
  };
  std::string before = StateFileText();
  for (auto const& c : cases) {
    SCOPED_TRACE(c.args[1]);
    auto output = Execute(Standard(c.args));
    EXPECT_EQ(output->GetErrorMessages(), c.messages);
    EXPECT_TRUE(RootIsTrue(output));
    auto result = Run(Standard(c.args));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
  }
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(StandardSwitchTest, ShapingReadsMinusOneWhileOff) {
  auto result = Run(Standard({"policy", "shaping", "get", "-v", "vSwitch0"}));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "Enabled: false\nAverage Bandwidth: -1 Kbps\nPeak Bandwidth: -1 Kbps\n"
            "Burst Size: -1 Kib\n");
  // Values given while shaping is off are ignored.
  ASSERT_EQ(Run(Standard({"policy", "shaping", "set", "-v", "vSwitch0", "-b", "100"})).status, 0);
  ASSERT_EQ(Run(Standard({"policy", "shaping", "set", "-v", "vSwitch0", "-e", "true", "-b", "1000",
                          "-k", "2000", "-t", "64"}))
                .status,
            0);
  // One value alone on an enabled policy.
  ASSERT_EQ(Run(Standard({"policy", "shaping", "set", "-v", "vSwitch0", "-k", "3000"})).status, 0);
  result = Run(Standard({"policy", "shaping", "get", "-v", "vSwitch0"}));
  EXPECT_EQ(result.out,
            "Enabled: true\nAverage Bandwidth: 1000 Kbps\nPeak Bandwidth: 3000 Kbps\n"
            "Burst Size: 64 Kib\n");
}

TEST_F(StandardSwitchTest, SecuritySetTakesItsOwnShortNames) {
  ASSERT_EQ(
      Run(Standard({"policy", "security", "set", "-v", "vSwitch0", "-p", "true", "-f", "yes"}))
          .status,
      0);
  auto result = Run(Standard({"policy", "security", "get", "-v", "vSwitch0"}));
  EXPECT_EQ(result.out,
            "Allow Promiscuous: true\nAllow MAC Address Change: false\n"
            "Allow Forged Transmits: true\n");
  EXPECT_EQ(Run(Standard({"policy", "security", "set", "-v", "vSwitch0", "-o", "true"})).status, 2);
  // Without options the policy is written back all the same.
  InjectFault("VirtualSwitchImpl::ApplySecurityPolicy", "written");
  EXPECT_EQ(Execute(Standard({"policy", "security", "set", "-v", "vSwitch0"}))->GetErrorMessages(),
            Strings{"written"});
}

TEST_F(StandardSwitchTest, HostFailuresBecomeTheMessage) {
  struct Case {
    Args args;
    char const* operation;
  };
  std::vector<Case> cases = {
      {{"add", "-v", "vSwitch2"}, "VirtualSwitchInfoImpl::AddVirtualSwitchWithPolicy"},
      {{"remove", "-v", "vSwitch1"}, "VirtualSwitchInfoImpl::RemoveVirtualSwitch"},
      {{"remove", "-v", "vSwitch1"}, "PortsetImpl::IsValidVirtualSwitch"},
      {{"set", "-v", "vSwitch1", "-m", "9000"}, "VirtualSwitchImpl::SetMTU"},
      {{"set", "-v", "vSwitch1", "-m", "9000"}, "VirtualSwitchInfoImpl::GetVirtualSwitchByName"},
      {{"list"}, "VirtualSwitchInfoImpl::GetVirtualSwitches"},
      {{"list"}, "NetworkInfoImpl::GetPnics"},
      {{"list"}, "VirtualSwitchImpl::NeedBeacon"},
      {{"uplink", "add", "-v", "vSwitch1", "-u", "ornic2"}, "VirtualSwitchImpl::AddUplink"},
      {{"uplink", "add", "-v", "vSwitch1", "-u", "ornic2"}, "NetworkFactory::GetVirtualSwitchById"},
      {{"uplink", "remove", "-v", "vSwitch0", "-u", "ornic1"}, "VirtualSwitchImpl::RemoveUplink"},
      {{"policy", "failover", "get", "-v", "vSwitch0"}, "PortsetImpl::GetConnectedUplinks"},
      {{"policy", "failover", "set", "-v", "vSwitch0", "-l", "mac"},
       "VirtualSwitchImpl::ApplyTeamingPolicy"},
      {{"policy", "failover", "set", "-v", "vSwitch0", "-a", "ornic1"}, "PnicImpl::IsValidPnic"},
      {{"policy", "security", "get", "-v", "vSwitch0"},
       "VirtualSwitchImpl::GetEffectiveSecurityPolicy"},
      {{"policy", "security", "set", "-v", "vSwitch0"}, "VirtualSwitchImpl::ApplySecurityPolicy"},
      {{"policy", "shaping", "get", "-v", "vSwitch0"},
       "VirtualSwitchImpl::GetEffectiveShapingPolicy"},
      {{"policy", "shaping", "set", "-v", "vSwitch0", "-e", "false"},
       "VirtualSwitchImpl::ApplyShapingPolicy"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    ClearFaults();
    InjectFault(c.operation, "host table locked");
    auto output = Execute(Standard(c.args));
    EXPECT_EQ(output->GetErrorMessages(), Strings{"host table locked"});
    // A list keeps no partial result: the failure comes before its root.
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
}

}  // namespace
