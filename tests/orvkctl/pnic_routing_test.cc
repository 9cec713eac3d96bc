// The simulated library's physical NICs and routing tables: caching, what a
// change does to the state, and what persists.
#include <gtest/gtest.h>

#include "host_store.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "hostctl/routing.h"
#include "support/harness.h"

namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv4Network;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;
using OrvkCtl::Network::NetworkInfoImpl;
using OrvkCtl::Network::PnicImpl;
using OrvkCtl::Network::RoutingInfoImpl;
using OrvkCtl::Sim::HostModel;
using TestSupport::HostTest;

class PnicImplTest : public HostTest {};

TEST_F(PnicImplTest, AnswersFromOneReadUntilMarkedStale) {
  PnicImpl pnic("ornic0");
  ASSERT_TRUE(pnic.IsLinkUp());
  OrvkCtl::Sim::ChangeHost([](HostModel& host) { host.nic.pnics[0].carrier = false; });
  InjectFault("PnicImpl::Refresh", "must not refresh");
  EXPECT_TRUE(pnic.IsLinkUp());
  EXPECT_EQ(pnic.GetSpeed(), 1000u);
  ClearFaults();
  pnic.MarkStale();
  EXPECT_FALSE(pnic.IsLinkUp());
  EXPECT_EQ(pnic.GetSpeed(), 0u);
  EXPECT_TRUE(pnic.IsAdminUp());
}

TEST_F(PnicImplTest, MakingObjectsReadsNothing) {
  InjectFault("*", "host unreachable");
  NetworkInfoImpl networkInfo;
  PnicImpl pnic("ornic0");
  RoutingInfoImpl routing("defaultTcpipStack");
  EXPECT_THROW(pnic.IsLinkUp(), HostCtlException);
}

TEST_F(PnicImplTest, ChangesReadBackThroughTheSameObject) {
  PnicImpl pnic("ornic2");
  ASSERT_TRUE(pnic.IsLinkStatusUp());
  pnic.SetAdminUp(false);
  EXPECT_FALSE(pnic.IsAdminUp());
  EXPECT_FALSE(pnic.IsLinkStatusUp());
  EXPECT_EQ(pnic.GetDuplex(), HostCtl::Network::DUPLEX_AUTO);
  pnic.SetAdminUp(true);
  EXPECT_TRUE(pnic.IsLinkUp());
  EXPECT_EQ(pnic.GetDuplex(), HostCtl::Network::DUPLEX_FULL);
}

TEST_F(PnicImplTest, UnknownNicIsNullByNameAndAFailureByObject) {
  NetworkInfoImpl networkInfo;
  EXPECT_EQ(networkInfo.GetPnicByName("ornic9"), nullptr);
  EXPECT_EQ(networkInfo.GetPnics().size(), 5u);
  PnicImpl pnic("ornic9");
  EXPECT_EQ(pnic.GetName(), "ornic9");
  try {
    pnic.GetMtu();
    FAIL() << "no exception";
  } catch (HostCtlException const& e) {
    EXPECT_EQ(e.message, "Physical NIC ornic9 not found");
  }
  EXPECT_THROW(pnic.SetAdminUp(true), HostCtlException);
}

TEST_F(PnicImplTest, GetInfoLeavesTheWritersFlagsAlone) {
  PnicImpl pnic("ornic0");
  HostCtl::Network::PnicInfo info;
  info.portChanged = true;
  info.wakeOnChanged = true;
  pnic.GetInfo(info);
  EXPECT_TRUE(info.portChanged);
  EXPECT_TRUE(info.wakeOnChanged);
  EXPECT_FALSE(info.transceiverChanged);
  EXPECT_EQ(info.supportedWakeOnModes.size(), 5u);
  EXPECT_EQ(info.linkStatus, "Up");
}

TEST_F(PnicImplTest, FactoryHandsOutTheSameView) {
  auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
  auto pnics = networkInfo->GetPnics();
  ASSERT_EQ(pnics.size(), 5u);
  EXPECT_EQ(pnics[4]->GetPciDevice(), nullptr);
  auto pci = pnics[0]->GetPciDevice();
  ASSERT_NE(pci, nullptr);
  EXPECT_EQ(pci->GetAddress(), "0000:18:00.0");
}

class RoutingInfoTest : public HostTest {
 protected:
  std::vector<std::string> Ipv4Routes(RoutingInfoImpl& routing) {
    std::vector<std::string> rows;
    for (auto const& route : routing.GetCurrentOrvikRoutes()) {
      rows.push_back(route.network.GetStringAddress() + " " + route.gateway.GetStringAddress() +
                     " " + route.interfaceName);
    }
    return rows;
  }
};

TEST_F(RoutingInfoTest, DefaultRoutesAreTheAllZeroNetworks) {
  EXPECT_EQ(RoutingInfoImpl::DEFAULT_IPV4_ROUTE.GetStringAddress(), "0.0.0.0/0");
  EXPECT_EQ(RoutingInfoImpl::DEFAULT_IPV6_ROUTE, Ipv6Network("::/0"));
  EXPECT_FALSE(RoutingInfoImpl::DEFAULT_IPV6_ROUTE == Ipv6Network("::1/0"));
}

TEST_F(RoutingInfoTest, RuntimeOnlyGatewayKeepsTheConfiguredOne) {
  RoutingInfoImpl routing("defaultTcpipStack");
  routing.SetOrvikDefaultGateway(Ipv4Address("192.168.10.9"), true);
  EXPECT_EQ(routing.GetOrvikDefaultGateway(), Ipv4Address("192.168.10.9"));
  EXPECT_EQ(routing.GetOrvikConfigDefaultGateway(), Ipv4Address("192.168.10.1"));
  EXPECT_EQ(Ipv4Routes(routing)[0], "0.0.0.0/0 192.168.10.9 orvk0");

  routing.SetOrvikDefaultGateway(Ipv4Address(), false);
  EXPECT_EQ(routing.GetOrvikDefaultGateway(), Ipv4Address());
  EXPECT_EQ(routing.GetOrvikConfigDefaultGateway(), Ipv4Address());
  EXPECT_EQ(Ipv4Routes(routing).size(), 2u);

  // A new default route goes first.
  routing.SetOrvikDefaultGateway(Ipv4Address("192.168.10.1"), false);
  EXPECT_EQ(Ipv4Routes(routing)[0], "0.0.0.0/0 192.168.10.1 orvk0");
  EXPECT_EQ(routing.GetDefaultGatewaySource(RoutingInfoImpl::DEFAULT_IPV4_ROUTE), "MANUAL");
  EXPECT_EQ(routing.GetDefaultGatewaySource(Ipv4Network("10.99.0.0/16")), "N/A");
}

TEST_F(RoutingInfoTest, UnreachableGatewayChangesNothing) {
  RoutingInfoImpl routing("defaultTcpipStack");
  auto before = Ipv4Routes(routing);
  EXPECT_THROW(routing.SetOrvikDefaultGateway(Ipv4Address("10.0.0.1"), false), HostCtlException);
  EXPECT_THROW(routing.SetIpv6OrvikDefaultGateway(Ipv6Address("2001:db8:99::1")), HostCtlException);
  EXPECT_EQ(Ipv4Routes(routing), before);
  EXPECT_EQ(routing.GetOrvikConfigDefaultGateway(), Ipv4Address("192.168.10.1"));
  EXPECT_EQ(routing.GetIpv6OrvikDefaultGateway(), Ipv6Address("fe80::1"));
}

TEST_F(RoutingInfoTest, RoutesAreNamedByTheirNetworkPart) {
  RoutingInfoImpl routing("defaultTcpipStack");
  routing.RemoveOrvikRoute(Ipv4Network("10.50.1.7/16"), Ipv4Address("192.168.10.254"));
  routing.AddIpv6OrvikRoute(Ipv6Network("2001:db8:77::5/48"), Ipv6Address("fe80::7"));
  auto routes = routing.GetCurrentIpv6OrvikRoutes();
  ASSERT_EQ(routes.size(), 4u);
  EXPECT_EQ(routes[3].network.GetStringAddress(), "2001:db8:77::/48");
  routing.RemoveIpv6OrvikRoute(Ipv6Network("2001:db8:77::/48"), Ipv6Address("fe80::7"));
  EXPECT_EQ(routing.GetCurrentIpv6OrvikRoutes().size(), 3u);
}

TEST_F(RoutingInfoTest, RemovingTheDefaultRouteAlsoForgetsItsConfiguration) {
  RoutingInfoImpl routing("defaultTcpipStack");
  routing.RemoveIpv6OrvikRoute(RoutingInfoImpl::DEFAULT_IPV6_ROUTE, Ipv6Address("fe80::1"));
  EXPECT_EQ(routing.GetIpv6OrvikDefaultGateway(), Ipv6Address());
  EXPECT_EQ(routing.GetIpv6OrvikConfigDefaultGateway(), Ipv6Address());
}

TEST_F(RoutingInfoTest, SwitchingToAnUnknownInstanceKeepsTheOldOne) {
  RoutingInfoImpl routing("defaultTcpipStack");
  EXPECT_THROW(routing.SetNetstackInstanceKey("nowhere"), HostCtlException);
  EXPECT_EQ(routing.GetNetstackInstanceKey(), "defaultTcpipStack");
  EXPECT_EQ(Ipv4Routes(routing).size(), 3u);
  RoutingInfoImpl unknown("nowhere");
  EXPECT_THROW(unknown.GetCurrentOrvikRoutes(), HostCtlException);
}

TEST(HostAreasJson, NicAndRoutesRoundTrip) {
  HostModel host = OrvkCtl::Sim::DefaultHost();
  host.nic.pnics[1].negotiation_restarts = 3;
  host.nic.pnics[2].pause.rx_resolution = 2;
  HostModel copy = OrvkCtl::Sim::HostFromJson(OrvkCtl::Sim::HostToJson(host));
  EXPECT_EQ(copy.nic.pnics, host.nic.pnics);
  EXPECT_EQ(copy.ip.routes, host.ip.routes);
}

}  // namespace
