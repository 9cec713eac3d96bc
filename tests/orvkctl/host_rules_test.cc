// The host's rules that span areas, on the default host's model itself.
#include "host_rules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "hostctl/lib.h"

namespace {

using HostCtl::Lib::HostCtlException;
using OrvkCtl::Sim::DefaultHost;
using OrvkCtl::Sim::HostModel;

template <class List, class Keep>
size_t Count(List const& list, Keep const& keep) {
  return static_cast<size_t>(std::count_if(list.begin(), list.end(), keep));
}

TEST(HostRulesTest, RemovingAnInterfaceTakesWhatWasItsOwn) {
  HostModel host = DefaultHost();
  auto on = [](auto const& row) { return row.interface == "orvk0"; };
  auto const& routes = *OrvkCtl::Sim::FindNetstackRoutes(host.ip, "defaultTcpipStack");
  ASSERT_GT(Count(routes.ipv4_neighbors, on), 0u);
  ASSERT_GT(Count(routes.ipv6_neighbors, on), 0u);
  size_t const sockets = host.ip.connections.size();
  auto const* group = OrvkCtl::Sim::FindPortGroup(host.vswitch, "Management Network");
  int const clients = group->active_clients;

  OrvkCtl::Sim::RemoveInterface(host, "orvk0");

  EXPECT_EQ(OrvkCtl::Sim::FindInterface(host.ip, "orvk0"), nullptr);
  EXPECT_EQ(Count(routes.ipv4, on) + Count(routes.ipv6, on), 0u);
  EXPECT_EQ(Count(routes.ipv4_neighbors, on) + Count(routes.ipv6_neighbors, on), 0u);
  // The three sessions on its addresses go; listeners on every address and
  // loopback stay.
  EXPECT_EQ(host.ip.connections.size(), sockets - 3);
  for (auto const& socket : host.ip.connections) {
    EXPECT_NE(socket.local_address, "192.168.10.21");
    EXPECT_NE(socket.local_address, "2001:db8:10::21");
  }
  EXPECT_EQ(Count(host.runtime.ports, [](auto const& port) { return port.client == "orvk0"; }),
            0u);
  EXPECT_EQ(group->active_clients, clients - 1);
  EXPECT_THROW(OrvkCtl::Sim::RemoveInterface(host, "orvk0"), HostCtlException);
}

TEST(HostRulesTest, RemovingASwitchUnbindsItsEnsContexts) {
  HostModel host = DefaultHost();
  host.runtime.ens.lcores[2].switch_name = "vSwitch1";
  // Its port group is in use: refused, nothing changed.
  OrvkCtl::Sim::FindPortGroup(host.vswitch, "Storage Network")->active_clients = 1;
  EXPECT_THROW(OrvkCtl::Sim::RemoveStandardSwitch(host, "vSwitch1"), HostCtlException);
  EXPECT_EQ(host.runtime.ens.lcores[2].switch_name, "vSwitch1");

  OrvkCtl::Sim::FindPortGroup(host.vswitch, "Storage Network")->active_clients = 0;
  OrvkCtl::Sim::RemoveStandardSwitch(host, "vSwitch1");
  EXPECT_EQ(OrvkCtl::Sim::FindStandardSwitch(host.vswitch, "vSwitch1"), nullptr);
  EXPECT_EQ(host.runtime.ens.lcores[2].switch_name, "null");
  EXPECT_EQ(host.runtime.ens.lcores[0].switch_name, "DSwitch-Prod");
  EXPECT_THROW(OrvkCtl::Sim::RemoveStandardSwitch(host, "vSwitch1"), HostCtlException);
}

TEST(HostRulesTest, TeamUplinkFollowsTheFailoverOrderAndTheLinks) {
  HostModel host = DefaultHost();
  auto const& web = *OrvkCtl::Sim::FindPort(host.runtime, 33554437);  // web-01 on vSwitch0
  auto& teaming = OrvkCtl::Sim::FindStandardSwitch(host.vswitch, "vSwitch0")->teaming;
  auto& ornic0 = *OrvkCtl::Sim::FindPnic(host.nic, "ornic0");
  auto& ornic1 = *OrvkCtl::Sim::FindPnic(host.nic, "ornic1");
  struct Step {
    char const* what;
    std::function<void()> change;
    char const* uplink;
  };
  Step const steps[] = {
      {"as seeded", [] {}, "ornic0"},
      {"ornic1 active, ornic0 standby", [&] { teaming.uplink_order = {"ornic1", "ornic0"}; },
       "ornic1"},
      {"the active one down", [&] { ornic1.admin_up = false; }, "ornic0"},
      {"the standby one unplugged too", [&] { ornic0.carrier = false; }, ""},
      {"the active one back", [&] { ornic1.admin_up = true; }, "ornic1"},
  };
  for (auto const& step : steps) {
    SCOPED_TRACE(step.what);
    step.change();
    EXPECT_EQ(OrvkCtl::Sim::TeamUplink(host, web), step.uplink);
  }
  // A distributed switch's port keeps the uplink it was given: repl-01's is
  // ornic2, the NIC of the LAG's first uplink port.
  EXPECT_EQ(OrvkCtl::Sim::TeamUplink(host, *OrvkCtl::Sim::FindPort(host.runtime, 67108869)),
            "ornic2");
}

TEST(HostRulesTest, EveryUplinkOfTheDefaultHostIsOneOfItsNics) {
  // What a distributed switch, its uplink ports, its LAGs and its ports name
  // as an uplink is a physical NIC, so that every command that shows one
  // finds it.
  HostModel const host = DefaultHost();
  std::vector<std::string> named;
  for (auto const& dvs : host.vswitch.distributed_switches) {
    named.insert(named.end(), dvs.uplinks.begin(), dvs.uplinks.end());
    for (auto const& port : dvs.uplink_ports) {
      if (!port.uplink.empty()) named.push_back(port.uplink);
    }
    for (auto const& lag : dvs.lags) {
      for (auto const& member : lag.members) named.push_back(member.nic);
    }
  }
  for (auto const& port : host.runtime.ports) {
    if (!port.team_uplink.empty()) named.push_back(port.team_uplink);
  }
  ASSERT_FALSE(named.empty());
  for (auto const& uplink : named) {
    SCOPED_TRACE(uplink);
    EXPECT_NE(OrvkCtl::Sim::FindPnic(host.nic, uplink), nullptr);
  }
}

TEST(HostRulesTest, ActivatedCapabilitiesFollowTheSettings) {
  HostModel host = DefaultHost();
  auto bit = [](unsigned n) { return uint64_t{1} << n; };
  auto& ornic0 = *OrvkCtl::Sim::FindPnic(host.nic, "ornic0");
  auto& ornic2 = *OrvkCtl::Sim::FindPnic(host.nic, "ornic2");
  auto const& ornic3 = *OrvkCtl::Sim::FindPnic(host.nic, "ornic3");
  // What the settings leave as the driver has it.
  EXPECT_EQ(OrvkCtl::Sim::ActivatedHwCaps(ornic0), ornic0.hw_cap.activated);
  // SR-IOV on ornic2 and DCB off on ornic3 show.
  EXPECT_EQ(OrvkCtl::Sim::ActivatedHwCaps(ornic2), ornic2.hw_cap.activated | bit(23));
  EXPECT_EQ(OrvkCtl::Sim::ActivatedHwCaps(ornic3), ornic3.hw_cap.activated & ~bit(18));

  ornic2.offload.tcp_segmentation = false;
  ornic2.offload.scatter_gather = false;
  ornic2.dcb.enabled = false;
  uint64_t const off = OrvkCtl::Sim::ActivatedHwCaps(ornic2);
  for (unsigned n : {0u, 6u, 8u, 18u}) EXPECT_FALSE(off & bit(n)) << n;
  EXPECT_TRUE(off & bit(1));  // checksum offload stays
  // A setting never activates what the device lacks: LRO on a gigabit port.
  ornic0.offload.large_receive = true;
  EXPECT_FALSE(OrvkCtl::Sim::ActivatedHwCaps(ornic0) & bit(17));
}

TEST(HostRulesTest, AnActiveUplinkOfAStandardSwitchIsNoBranch) {
  HostModel const host = DefaultHost();
  EXPECT_THROW(OrvkCtl::Sim::CheckBranch(host, "ornic0"), HostCtlException);
  EXPECT_NO_THROW(OrvkCtl::Sim::CheckBranch(host, "ornic1"));  // standby
  EXPECT_NO_THROW(OrvkCtl::Sim::CheckBranch(host, "ornic3"));  // a distributed switch's
  EXPECT_NO_THROW(OrvkCtl::Sim::CheckBranch(host, "ornic4"));  // on no switch
}

TEST(HostRulesTest, AllowedIpsAndDnsServers) {
  struct Case {
    char const* text;
    char const* canonical;
  };
  Case const allowed[] = {
      {"10.50.0.12", "10.50.0.12"},         {"10.50.0.12/32", "10.50.0.12"},
      {"10.1.2.3/8", "10.0.0.0/8"},         {"2001:db8:10::21/128", "2001:db8:10::21"},
      {"2001:DB8:10::1/64", "2001:db8:10::/64"},
  };
  for (auto const& c : allowed) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(OrvkCtl::Sim::CanonicalAllowedIp(c.text), c.canonical);
  }
  EXPECT_THROW(OrvkCtl::Sim::CanonicalAllowedIp("10.50.0.12/33"), HostCtlException);

  for (char const* address : {"0.0.0.0", "::", "255.255.255.255"}) {
    SCOPED_TRACE(address);
    EXPECT_THROW(OrvkCtl::Sim::CheckDnsServer(address), HostCtlException);
  }
  EXPECT_NO_THROW(OrvkCtl::Sim::CheckDnsServer("192.168.10.2"));
  EXPECT_NO_THROW(OrvkCtl::Sim::CheckDnsServer("2001:db8::53"));
}

}  // namespace
