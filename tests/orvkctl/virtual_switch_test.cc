// Standard switches and port groups of the simulated host: inheritance of
// policies, uplink bookkeeping, limits, and persistence.
#include "hostctl/virtual_switch.h"

#include <gtest/gtest.h>

#include "host_store.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "hostctl/port_group_impl.h"
#include "support/harness.h"

namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::NetworkFactory;
using HostCtl::Network::NicTeamingPolicy;
using HostCtl::Network::PortSecurityPolicy;
using HostCtl::Network::ShapingPolicy;
using OrvkCtl::Network::PortGroupImpl;
using OrvkCtl::Network::VirtualSwitchImpl;
using OrvkCtl::Network::VirtualSwitchInfoImpl;
using Strings = std::vector<std::string>;

class VirtualSwitchTest : public TestSupport::HostTest {
 protected:
  std::unique_ptr<HostCtl::Network::VirtualSwitch> AddSwitch(std::string const& name,
                                                             unsigned int ports = 128) {
    return VirtualSwitchInfoImpl().AddVirtualSwitchWithPolicy(
        NicTeamingPolicy::GetDefaultPolicy(), PortSecurityPolicy::GetDefaultPolicy(),
        ShapingPolicy::GetDefaultPolicy(), HostCtl::Network::NicCapabilities::GetDefaultPolicy(),
        name, ports);
  }

  static std::string ThrownText(std::function<void()> const& call) {
    try {
      call();
    } catch (HostCtlException const& e) {
      return e.message;
    }
    return "(nothing thrown)";
  }
};

TEST_F(VirtualSwitchTest, DefaultHostHasTwoSwitchesAndThreeGroups) {
  VirtualSwitchInfoImpl info;
  Strings names;
  for (auto const& vswitch : info.GetVirtualSwitches()) names.push_back(vswitch->GetName());
  EXPECT_EQ(names, (Strings{"vSwitch0", "vSwitch1"}));
  Strings groups;
  for (auto const& group : OrvkCtl::Network::NetworkInfoImpl().GetAllPortGroups()) {
    groups.push_back(group->GetVirtualSwitchName() + "/" + group->GetName());
  }
  EXPECT_EQ(groups, (Strings{"vSwitch0/Management Network", "vSwitch0/VM Network",
                             "vSwitch1/Storage Network"}));
}

TEST_F(VirtualSwitchTest, SeededSwitchHasTheDefaultsOfANewOne) {
  auto fresh = AddSwitch("fresh");
  auto seeded = VirtualSwitchInfoImpl().GetVirtualSwitchByName("vSwitch1");
  auto a = fresh->GetConfiguredTeamingPolicy();
  auto b = seeded->GetConfiguredTeamingPolicy();
  EXPECT_EQ(a.setMask, b.setMask);
  EXPECT_EQ(a.teamPolicy, b.teamPolicy);
  EXPECT_EQ(a.linkCriteria.setMask, b.linkCriteria.setMask);
  EXPECT_EQ(a.linkCriteria.valueBits, b.linkCriteria.valueBits);
  EXPECT_EQ(a.notifySwitchOnFailure, b.notifySwitchOnFailure);
  EXPECT_EQ(fresh->GetConfiguredSecurityPolicy().setMask,
            seeded->GetConfiguredSecurityPolicy().setMask);
  EXPECT_EQ(fresh->GetConfiguredShapingPolicy().setMask,
            seeded->GetConfiguredShapingPolicy().setMask);
}

TEST_F(VirtualSwitchTest, GroupsFollowTheirSwitchUntilTheyOverride) {
  auto vswitch = NetworkFactory::GetVirtualSwitchById("vSwitch0");
  auto group = NetworkFactory::GetPortGroupByName("VM Network");
  ASSERT_NE(group, nullptr);

  auto security = vswitch->GetConfiguredSecurityPolicy();
  security.SetAllowPromiscuous(true);
  vswitch->ApplySecurityPolicy(security);
  EXPECT_TRUE(group->GetEffectiveSecurityPolicy().allowPromiscuous);
  EXPECT_EQ(group->GetConfiguredSecurityPolicy().setMask, 0u);

  auto own = group->GetConfiguredSecurityPolicy();
  own.SetAllowPromiscuous(false);
  group->ApplySecurityPolicy(own);
  EXPECT_FALSE(group->GetEffectiveSecurityPolicy().allowPromiscuous);
  EXPECT_TRUE(vswitch->GetEffectiveSecurityPolicy().allowPromiscuous);

  // The effective mask tells what is set on the group or inherited.
  auto shaping = vswitch->GetConfiguredShapingPolicy();
  shaping.SetPeakBps(5000);
  vswitch->ApplyShapingPolicy(shaping);
  EXPECT_EQ(group->GetEffectiveShapingPolicy().setMask,
            ShapingPolicy::ENABLED_BIT | ShapingPolicy::PEAK_BIT);
}

TEST_F(VirtualSwitchTest, WithoutAnOrderEveryConnectedUplinkIsActive) {
  // A NIC serves one switch at a time: free two first.
  auto first = NetworkFactory::GetVirtualSwitchById("vSwitch0");
  first->RemoveUplink("ornic0", false);
  first->RemoveUplink("ornic1", false);
  auto vswitch = AddSwitch("vSwitch2");
  vswitch->AddUplink("ornic0");
  vswitch->AddUplink("ornic1");
  auto teaming = vswitch->GetEffectiveTeamingPolicy();
  EXPECT_EQ(teaming.uplinkOrder, (Strings{"ornic0", "ornic1"}));
  EXPECT_EQ(teaming.maxActiveUplinks, 2);
  EXPECT_EQ(teaming.setMask & NicTeamingPolicy::UPLINK_ORDER_BIT, 0u);

  // With an order of its own, a new uplink stays unused.
  auto configured = vswitch->GetConfiguredTeamingPolicy();
  configured.SetUplinkOrder({"ornic1"});
  configured.SetMaxActiveUplinks(1);
  vswitch->ApplyTeamingPolicy(configured);
  vswitch->RemoveUplink("ornic0", false);
  vswitch->AddUplink("ornic0");
  EXPECT_EQ(vswitch->GetEffectiveTeamingPolicy().uplinkOrder, Strings{"ornic1"});
}

TEST_F(VirtualSwitchTest, RemovedUplinkLeavesEveryOrder) {
  auto vswitch = NetworkFactory::GetVirtualSwitchById("vSwitch0");
  auto group = NetworkFactory::GetPortGroupByName("Management Network");
  auto own = group->GetConfiguredTeamingPolicy();
  own.SetUplinkOrder({"ornic1", "ornic0"});
  own.SetMaxActiveUplinks(2);
  group->ApplyTeamingPolicy(own);

  vswitch->RemoveUplink("ornic0", false);
  auto switchOrder = vswitch->GetEffectiveTeamingPolicy();
  EXPECT_EQ(switchOrder.uplinkOrder, Strings{"ornic1"});
  EXPECT_EQ(switchOrder.maxActiveUplinks, 1);  // the standby took over
  auto groupOrder = group->GetEffectiveTeamingPolicy();
  EXPECT_EQ(groupOrder.uplinkOrder, Strings{"ornic1"});
  EXPECT_EQ(groupOrder.maxActiveUplinks, 1);

  EXPECT_EQ(ThrownText([&] { vswitch->RemoveUplink("ornic0", false); }),
            "Uplink ornic0 is not connected to virtual switch vSwitch0");
  EXPECT_NO_THROW(vswitch->RemoveUplink("ornic0", true));
}

TEST_F(VirtualSwitchTest, RefusesWhatARealHostRefuses) {
  auto vswitch0 = NetworkFactory::GetVirtualSwitchById("vSwitch0");
  auto vswitch1 = NetworkFactory::GetVirtualSwitchById("vSwitch1");
  auto group = NetworkFactory::GetPortGroupByName("Storage Network");
  VirtualSwitchInfoImpl info;
  NicTeamingPolicy stranger;
  stranger.SetUplinkOrder({"ornic3"});
  NicTeamingPolicy twice;
  twice.SetUplinkOrder({"ornic0", "ornic0"});
  NicTeamingPolicy tooMany;
  tooMany.SetUplinkOrder({"ornic0"});
  tooMany.SetMaxActiveUplinks(2);
  ShapingPolicy peakBelowAverage;
  peakBelowAverage.SetEnabled(true);
  peakBelowAverage.SetAverageBps(2000);
  peakBelowAverage.SetPeakBps(1000);
  peakBelowAverage.SetBurstSize(128);

  struct Case {
    char const* name;
    std::function<void()> call;
    char const* message;
  };
  std::vector<Case> cases = {
      {"duplicate switch", [&] { AddSwitch("vSwitch1"); },
       "A virtual switch named vSwitch1 already exists"},
      {"empty switch name", [&] { AddSwitch(""); }, "Virtual switch name cannot be empty"},
      {"too many ports", [&] { AddSwitch("big", 4097); },
       "Invalid number of ports 4097: a virtual switch has 1 to 4096 ports"},
      {"host port budget",
       [&] {
         AddSwitch("big1", 4096);
         AddSwitch("big2", 300);
       },
       "Unable to create virtual switch big2 with 300 ports: 4312 of the host's 4608 ports are "
       "allocated"},
      {"switch with clients", [&] { info.RemoveVirtualSwitch("vSwitch0"); },
       "Unable to remove virtual switch vSwitch0: port group Management Network is in use"},
      {"unknown switch", [&] { info.RemoveVirtualSwitch("vSwitch9"); },
       "Virtual switch vSwitch9 not found"},
      {"factory with unknown switch", [&] { NetworkFactory::GetVirtualSwitchById("vSwitch9"); },
       "Virtual switch vSwitch9 not found"},
      {"uplink of another switch", [&] { vswitch1->AddUplink("ornic1"); },
       "Unable to add uplink ornic1: it is already an uplink of vSwitch0"},
      {"not a NIC", [&] { vswitch1->AddUplink("ornic9"); },
       "Unable to add uplink ornic9: no physical NIC of that name"},
      {"group name in use elsewhere", [&] { vswitch1->AddPortGroup("VM Network"); },
       "A port group named VM Network already exists on virtual switch vSwitch0"},
      {"group with clients", [&] { vswitch0->RemovePortGroup("VM Network"); },
       "Unable to remove port group VM Network: it has 2 active clients"},
      {"group of another switch", [&] { vswitch1->RemovePortGroup("VM Network"); },
       "Port group VM Network not found on virtual switch vSwitch1"},
      {"order with a stranger", [&] { vswitch0->ApplyTeamingPolicy(stranger); },
       "Unable to apply teaming policy to virtual switch vSwitch0: uplink ornic3 is not "
       "connected to virtual switch vSwitch0"},
      {"order on a switch without uplinks", [&] { group->ApplyTeamingPolicy(twice); },
       "Unable to apply teaming policy to port group Storage Network: uplink ornic0 is not "
       "connected to virtual switch vSwitch1"},
      {"order on the right switch twice", [&] { vswitch0->ApplyTeamingPolicy(twice); },
       "Unable to apply teaming policy to virtual switch vSwitch0: uplink ornic0 is named more "
       "than once"},
      {"more active than ordered", [&] { vswitch0->ApplyTeamingPolicy(tooMany); },
       "Unable to apply teaming policy to virtual switch vSwitch0: 2 active uplinks requested, "
       "but the order holds 1"},
      {"peak below average", [&] { group->ApplyShapingPolicy(peakBelowAverage); },
       "Unable to apply shaping policy to port group Storage Network: the peak bandwidth (1000 "
       "bits/s) is lower than the average bandwidth (2000 bits/s)"},
      {"VLAN beyond the limit", [&] { group->SetVlanId(4096); },
       "Invalid VLAN id 4096 for port group Storage Network: it must be between 0 and 4095"},
      {"MTU below the limit", [&] { vswitch0->SetMTU(0); },
       "Invalid MTU 0 for virtual switch vSwitch0: it must be between 1280 and 9000"},
      {"CDP status", [&] { vswitch0->SetCdpStatus(4); }, "Invalid CDP status 4"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    std::string before = StateFileText();
    EXPECT_EQ(ThrownText(c.call), c.message);
    if (std::string(c.name) != "host port budget") {
      EXPECT_EQ(StateFileText(), before);
    }
  }
}

TEST_F(VirtualSwitchTest, LookupsByNameReportMissingObjectsTheirWay) {
  EXPECT_EQ(VirtualSwitchInfoImpl().GetVirtualSwitchByName("nope"), nullptr);
  EXPECT_EQ(NetworkFactory::GetPortGroupByName("nope"), nullptr);
  EXPECT_FALSE(OrvkCtl::Network::PortsetImpl::IsValidVirtualSwitch("nope"));
  EXPECT_THROW(PortGroupImpl("nope"), HostCtlException);
  EXPECT_TRUE(OrvkCtl::Network::PnicImpl::IsValidPnic("ornic3"));
  EXPECT_FALSE(OrvkCtl::Network::PnicImpl::IsValidPnic("ornic9"));
  // An object made for a name reads it only when asked.
  VirtualSwitchImpl ghost("nope");
  EXPECT_THROW(ghost.GetName(), HostCtlException);
}

TEST_F(VirtualSwitchTest, NameIsReadOnceAndCached) {
  VirtualSwitchImpl vswitch("vSwitch1");
  EXPECT_EQ(vswitch.GetName(), "vSwitch1");
  InjectFault("PortsetImpl::Refresh", "must not be called again");
  EXPECT_EQ(vswitch.GetName(), "vSwitch1");
}

TEST_F(VirtualSwitchTest, PortGroupIsAConnectionPoint) {
  PortGroupImpl group("Management Network");
  HostCtl::Network::ConnectionPoint& point = group;
  EXPECT_EQ(point.GetConnectionType(), HostCtl::Network::ConnectionPoint::PortGroupConnection);
  EXPECT_EQ(point.GetPortGroupName(), "Management Network");
  EXPECT_EQ(point.GetPortsetName(), "vSwitch0");
  EXPECT_TRUE(point.IsValid());
  EXPECT_EQ(point.GetDVPortParam(), HostCtl::Network::DVPortParam{});
  EXPECT_TRUE(point.GetOpaqueNetworkParam().networkId.empty());
}

TEST_F(VirtualSwitchTest, ListShowsBeaconUsers) {
  auto group = NetworkFactory::GetPortGroupByName("VM Network");
  auto teaming = group->GetConfiguredTeamingPolicy();
  HostCtl::Network::LinkCriteriaSelectionPolicy beacon;
  beacon.SetBeacon(false);
  teaming.SetLinkCriteria(beacon);
  group->ApplyTeamingPolicy(teaming);
  VirtualSwitchImpl vswitch("vSwitch0");
  EXPECT_EQ(vswitch.NeedBeacon(), Strings{"VM Network"});
  EXPECT_TRUE(vswitch.IsBeaconEnabled());
  EXPECT_FALSE(VirtualSwitchImpl("vSwitch1").IsBeaconEnabled());
}

TEST_F(VirtualSwitchTest, ChangesSurviveAReload) {
  NetworkFactory::GetVirtualSwitchById("vSwitch0")->RemoveUplink("ornic1", false);
  auto vswitch = AddSwitch("vSwitch2", 32);
  vswitch->AddUplink("ornic1");
  auto group = vswitch->AddPortGroup("Lab");
  group->SetVlanId(42);
  ShapingPolicy shaping;
  shaping.SetEnabled(true);
  shaping.SetAverageBps(1000);
  shaping.SetPeakBps(3000);
  shaping.SetBurstSize(12800);
  group->ApplyShapingPolicy(shaping);
  NicTeamingPolicy teaming;
  teaming.SetUplinkOrder({"ornic1"});
  teaming.SetMaxActiveUplinks(0);
  group->ApplyTeamingPolicy(teaming);
  group.reset();
  vswitch.reset();
  Reload();

  auto again = NetworkFactory::GetPortGroupByName("Lab");
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->GetVlanId(), 42);
  auto reloaded = again->GetConfiguredShapingPolicy();
  EXPECT_EQ(reloaded.setMask, 0xfu);
  EXPECT_EQ(reloaded.peakBps, 3000u);
  EXPECT_EQ(reloaded.burstSize, 12800u);
  auto order = again->GetEffectiveTeamingPolicy();
  EXPECT_EQ(order.uplinkOrder, Strings{"ornic1"});
  EXPECT_EQ(order.maxActiveUplinks, 0);
  VirtualSwitchImpl vswitch2("vSwitch2");
  EXPECT_EQ(vswitch2.GetNumConfiguredPorts(), 32);
  EXPECT_EQ(vswitch2.GetNumPorts(), 40);
  EXPECT_EQ(vswitch2.GetConnectedUplinks(), Strings{"ornic1"});
}

}  // namespace
