// The route commands against the simulated host.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "host_store.h"
#include "hostctl/network_types.h"
#include "hostctl/routing.h"
#include "support/harness.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using namespace Toolbase::MetaObj;
using TestSupport::HostTest;

using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

// The text a value type's constructor throws for `text`.
template <class T>
std::string ParseError(std::string const& text) {
  try {
    T value(text);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    return e.message;
  }
  return "(no error for " + text + ")";
}

class RouteTest : public HostTest {
 protected:
  // The rows of a list command, fields joined by " " in their declared order.
  std::vector<std::string> Rows(Args const& args) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{});
    std::vector<std::string> rows;
    auto list = std::dynamic_pointer_cast<MetaList>(output->GetRootObject());
    if (!list) return rows;
    for (auto const& item : list->GetItems()) {
      std::string row;
      for (auto const& [key, value] : static_cast<MetaStruct const&>(*item).GetFields()) {
        row += (row.empty() ? "" : " ") + static_cast<MetaString const&>(*value).GetValue();
      }
      rows.push_back(row);
    }
    return rows;
  }
  std::vector<std::string> Ipv4Rows() { return Rows({"network", "ip", "route", "ipv4", "list"}); }
  std::vector<std::string> Ipv6Rows() { return Rows({"network", "ip", "route", "ipv6", "list"}); }

  // Runs a write command; expects root true and these messages.
  void ExpectTrue(Args const& args, Messages const& messages = {}) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), messages);
    auto root = std::dynamic_pointer_cast<MetaBool>(output->GetRootObject());
    ASSERT_NE(root, nullptr);
    EXPECT_TRUE(root->GetValue());
  }
  // Runs a write command; expects no root and this one message.
  void ExpectFailure(Args const& args, std::string const& message) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
};

const std::vector<std::string> kDefaultIpv4 = {
    "default 0.0.0.0 192.168.10.1 orvk0 MANUAL",
    "192.168.10.0 255.255.255.0 0.0.0.0 orvk0 MANUAL",
    "10.50.0.0 255.255.0.0 192.168.10.254 orvk0 MANUAL",
};
const std::vector<std::string> kDefaultIpv6 = {
    "default :: fe80::1 orvk0",
    "fe80:: ffff:ffff:ffff:ffff:: :: orvk0",
    "2001:db8:10:: ffff:ffff:ffff:ffff:: :: orvk0",
};

TEST_F(RouteTest, ListsShowTheDefaultHost) {
  auto result = Run({"network", "ip", "route", "ipv4", "list"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "Network       Netmask        Gateway         Interface  Source\n"
            "------------  -------------  --------------  ---------  ------\n"
            "default       0.0.0.0        192.168.10.1    orvk0      MANUAL\n"
            "192.168.10.0  255.255.255.0  0.0.0.0         orvk0      MANUAL\n"
            "10.50.0.0     255.255.0.0    192.168.10.254  orvk0      MANUAL\n");
  EXPECT_EQ(Ipv4Rows(), kDefaultIpv4);
  EXPECT_EQ(Ipv6Rows(), kDefaultIpv6);
  // An empty --netstack means the default instance.
  EXPECT_EQ(Rows({"network", "ip", "route", "ipv6", "list", "-N", ""}), kDefaultIpv6);
  EXPECT_EQ(Rows({"network", "ip", "route", "ipv4", "list", "--netstack", "defaultTcpipStack"}),
            kDefaultIpv4);
}

TEST_F(RouteTest, AddedRoutesAreListedAndSurviveAReload) {
  ExpectTrue(
      {"network", "ip", "route", "ipv4", "add", "-n", "172.16.0.0/12", "-g", "192.168.10.250"});
  // Host bits of the network are dropped.
  ExpectTrue({"network", "ip", "route", "ipv4", "add", "--network", "10.60.7.9/16", "--gateway",
              "192.168.10.254", "--netstack", ""});
  ExpectTrue(
      {"network", "ip", "route", "ipv6", "add", "-n", "2001:db8:99::/48", "-g", "2001:db8:10::fe"});
  ExpectTrue({"network", "ip", "route", "ipv6", "add", "-n", "fd00:1::/64", "-g", "fe80::fe"});
  Reload();
  auto ipv4 = kDefaultIpv4;
  ipv4.push_back("172.16.0.0 255.240.0.0 192.168.10.250 orvk0 MANUAL");
  ipv4.push_back("10.60.0.0 255.255.0.0 192.168.10.254 orvk0 MANUAL");
  EXPECT_EQ(Ipv4Rows(), ipv4);
  auto ipv6 = kDefaultIpv6;
  ipv6.push_back("2001:db8:99:: ffff:ffff:ffff:: 2001:db8:10::fe orvk0");
  ipv6.push_back("fd00:1:: ffff:ffff:ffff:ffff:: fe80::fe orvk0");
  EXPECT_EQ(Ipv6Rows(), ipv6);

  ExpectTrue(
      {"network", "ip", "route", "ipv4", "remove", "-n", "172.16.0.0/12", "-g", "192.168.10.250"});
  ExpectTrue(
      {"network", "ip", "route", "ipv4", "remove", "-n", "10.60.0.0/16", "-g", "192.168.10.254"});
  ExpectTrue({"network", "ip", "route", "ipv6", "remove", "-n", "2001:db8:99::/48", "-g",
              "2001:db8:10::fe"});
  ExpectTrue({"network", "ip", "route", "ipv6", "remove", "-n", "fd00:1::/64", "-g", "fe80::fe"});
  Reload();
  EXPECT_EQ(Ipv4Rows(), kDefaultIpv4);
  EXPECT_EQ(Ipv6Rows(), kDefaultIpv6);
}

TEST_F(RouteTest, RemovingTheDefaultRouteClearsTheGatewayInForce) {
  struct Case {
    char const* family;
    char const* network;
    char const* gateway;
  };
  for (auto const& c : std::vector<Case>{{"ipv4", "default", "192.168.10.1"},
                                         {"ipv4", "0.0.0.0/0", "192.168.10.1"},
                                         {"ipv4", "10.9.8.7/0", "192.168.10.1"},
                                         {"ipv6", "default", "fe80::1"},
                                         {"ipv6", "::/0", "FE80::0001"}}) {
    SCOPED_TRACE(std::string(c.family) + " " + c.network);
    OrvkCtl::Sim::ResetHostForTest();
    std::remove(state_path_.c_str());
    ExpectTrue({"network", "ip", "route", c.family, "remove", "-n", c.network, "-g", c.gateway});
    OrvkCtl::Network::RoutingInfoImpl routing("defaultTcpipStack");
    if (std::string(c.family) == "ipv4") {
      EXPECT_EQ(Ipv4Rows(), std::vector<std::string>(kDefaultIpv4.begin() + 1, kDefaultIpv4.end()));
      EXPECT_EQ(routing.GetOrvikConfigDefaultGateway().GetStringAddress(), "0.0.0.0");
    } else {
      EXPECT_EQ(Ipv6Rows(), std::vector<std::string>(kDefaultIpv6.begin() + 1, kDefaultIpv6.end()));
      EXPECT_EQ(routing.GetIpv6OrvikConfigDefaultGateway().GetStringAddress(), "::");
    }
  }
}

TEST_F(RouteTest, RemovingTheDefaultRouteByItsConfiguredGateway) {
  // In force: 192.168.10.254; configured: still 192.168.10.1.
  OrvkCtl::Network::RoutingInfoImpl routing("defaultTcpipStack");
  routing.SetOrvikDefaultGateway(HostCtl::Network::Ipv4Address("192.168.10.254"), true);
  ASSERT_EQ(Ipv4Rows()[0], "default 0.0.0.0 192.168.10.254 orvk0 MANUAL");
  ExpectTrue({"network", "ip", "route", "ipv4", "remove", "-n", "default", "-g", "192.168.10.1"});
  EXPECT_EQ(Ipv4Rows(), std::vector<std::string>(kDefaultIpv4.begin() + 1, kDefaultIpv4.end()));

  OrvkCtl::Sim::ChangeHost(
      [](OrvkCtl::Sim::HostModel& host) { host.ip.routes[0].ipv6_config_gateway = "fe80::99"; });
  ExpectTrue({"network", "ip", "route", "ipv6", "remove", "-n", "default", "-g", "fe80::99"});
  EXPECT_EQ(Ipv6Rows(), std::vector<std::string>(kDefaultIpv6.begin() + 1, kDefaultIpv6.end()));
}

TEST_F(RouteTest, RemovingTheDefaultRouteByAnotherGatewayChangesNothing) {
  ASSERT_EQ(Ipv4Rows(), kDefaultIpv4);
  std::string before = StateFileText();
  ExpectTrue({"network", "ip", "route", "ipv4", "remove", "-n", "default", "-g", "192.168.10.254"},
             {"192.168.10.254 is not a default route."});
  ExpectTrue({"network", "ip", "route", "ipv6", "remove", "-n", "default", "-g", "FE80::0:2"},
             {"fe80::2 is not a default route."});
  EXPECT_EQ(StateFileText(), before);
  // Printed: the message, and no result for the true root.
  auto result =
      Run({"network", "ip", "route", "ipv4", "remove", "-n", "default", "-g", "192.168.10.7"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "192.168.10.7 is not a default route.\n");
}

TEST_F(RouteTest, AddingADefaultRouteAsksNoGateway) {
  ExpectTrue({"network", "ip", "route", "ipv4", "remove", "-n", "default", "-g", "192.168.10.1"});
  ExpectTrue({"network", "ip", "route", "ipv6", "remove", "-n", "default", "-g", "fe80::1"});
  for (char const* operation :
       {"RoutingInfoImpl::GetOrvikDefaultGateway", "RoutingInfoImpl::GetOrvikConfigDefaultGateway",
        "RoutingInfoImpl::SetOrvikDefaultGateway", "RoutingInfoImpl::GetIpv6OrvikDefaultGateway",
        "RoutingInfoImpl::GetIpv6OrvikConfigDefaultGateway",
        "RoutingInfoImpl::SetIpv6OrvikDefaultGateway"}) {
    InjectFault(operation, "must not be called");
  }
  ExpectTrue({"network", "ip", "route", "ipv4", "add", "-n", "default", "-g", "192.168.10.2"});
  ExpectTrue({"network", "ip", "route", "ipv6", "add", "-n", "default", "-g", "fe80::2"});
  ClearFaults();
  EXPECT_EQ(Ipv4Rows()[0], "default 0.0.0.0 192.168.10.2 orvk0 MANUAL");
  EXPECT_EQ(Ipv6Rows()[0], "default :: fe80::2 orvk0");
  OrvkCtl::Network::RoutingInfoImpl routing("defaultTcpipStack");
  EXPECT_EQ(routing.GetOrvikConfigDefaultGateway().GetStringAddress(), "192.168.10.2");
  // A second default route is refused by the host.
  ExpectFailure({"network", "ip", "route", "ipv4", "add", "-n", "default", "-g", "192.168.10.3"},
                "Netstack defaultTcpipStack already has a default route, through 192.168.10.2");
}

TEST_F(RouteTest, BadInputShowsTheHostTextAndChangesNothing) {
  using HostCtl::Network::Ipv4Address;
  using HostCtl::Network::Ipv4Network;
  using HostCtl::Network::Ipv6Address;
  using HostCtl::Network::Ipv6Network;
  struct Case {
    Args args;
    std::string message;
  };
  std::vector<Case> cases = {
      {{"ipv4", "add", "-n", "10.0.0.0/33", "-g", "192.168.10.5"},
       ParseError<Ipv4Network>("10.0.0.0/33")},
      {{"ipv4", "add", "-n", "10.0.0.0", "-g", "192.168.10.5"},
       ParseError<Ipv4Network>("10.0.0.0")},
      {{"ipv4", "add", "-n", "Default", "-g", "192.168.10.5"}, ParseError<Ipv4Network>("Default")},
      {{"ipv4", "add", "-n", "10.0.0.0/8", "-g", "1.2.3.256"},
       ParseError<Ipv4Address>("1.2.3.256")},
      {{"ipv4", "remove", "-n", "10.0.0.0/8", "-g", "fe80::1"}, ParseError<Ipv4Address>("fe80::1")},
      {{"ipv4", "remove", "-n", "::/0", "-g", "192.168.10.1"}, ParseError<Ipv4Network>("::/0")},
      {{"ipv6", "add", "-n", "2001:db8::/129", "-g", "fe80::1"},
       ParseError<Ipv6Network>("2001:db8::/129")},
      {{"ipv6", "add", "-n", "2001:db8::/64", "-g", "::g"}, ParseError<Ipv6Address>("::g")},
      {{"ipv6", "remove", "-n", "default", "-g", "192.168.10.1"},
       ParseError<Ipv6Address>("192.168.10.1")},
      {{"ipv6", "remove", "-n", "10.0.0.0/8", "-g", "fe80::1"},
       ParseError<Ipv6Network>("10.0.0.0/8")},
      // What the host itself refuses.
      {{"ipv4", "add", "-n", "10.50.0.0/16", "-g", "192.168.10.254"},
       "A route to 10.50.0.0/16 already exists in netstack defaultTcpipStack"},
      {{"ipv4", "add", "-n", "172.20.0.0/16", "-g", "10.1.1.1"},
       "Gateway 10.1.1.1 is not reachable from netstack defaultTcpipStack"},
      {{"ipv4", "add", "-n", "172.20.0.0/16", "-g", "0.0.0.0"},
       "Invalid gateway 0.0.0.0: a route needs a gateway address"},
      {{"ipv4", "remove", "-n", "10.50.0.0/16", "-g", "192.168.10.1"},
       "No route to 10.50.0.0/16 via 192.168.10.1 in netstack defaultTcpipStack"},
      {{"ipv4", "remove", "-n", "192.168.10.0/24", "-g", "0.0.0.0"},
       "The route to 192.168.10.0/24 belongs to interface orvk0 and cannot be removed"},
      {{"ipv6", "add", "-n", "2001:db8:10::/64", "-g", "fe80::9"},
       "A route to 2001:db8:10::/64 already exists in netstack defaultTcpipStack"},
      {{"ipv6", "add", "-n", "2001:db8:20::/64", "-g", "2001:db8:11::1"},
       "Gateway 2001:db8:11::1 is not reachable from netstack defaultTcpipStack"},
      {{"ipv6", "remove", "-n", "2001:db8:20::/64", "-g", "fe80::9"},
       "No route to 2001:db8:20::/64 via fe80::9 in netstack defaultTcpipStack"},
      {{"ipv4", "add", "-n", "172.20.0.0/16", "-g", "192.168.10.9", "-N", "nowhere"},
       "Netstack instance nowhere does not exist"},
      {{"ipv6", "remove", "-n", "default", "-g", "fe80::1", "--netstack", "nosuch"},
       "Netstack instance nosuch does not exist"},
      // IPv4 switches the instance before reading the addresses, IPv6 after.
      {{"ipv4", "remove", "-n", "bad", "-g", "bad", "-N", "nosuch"},
       "Netstack instance nosuch does not exist"},
      {{"ipv6", "remove", "-n", "bad", "-g", "bad", "-N", "nosuch"},
       ParseError<Ipv6Address>("bad")},
      {{"ipv6", "remove", "-n", "bad", "-g", "fe80::1", "-N", "nosuch"},
       ParseError<Ipv6Network>("bad")},
      {{"ipv4", "add", "-n", "bad", "-g", "bad", "-N", "nosuch"},
       "Netstack instance nosuch does not exist"},
  };
  ASSERT_EQ(Ipv4Rows(), kDefaultIpv4);
  std::string before = StateFileText();
  for (auto const& c : cases) {
    Args args = {"network", "ip", "route"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    std::string trace;
    for (auto const& word : c.args) trace += word + " ";
    SCOPED_TRACE(trace);
    ExpectFailure(args, c.message);
  }
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(RouteTest, ListOfAnUnknownNetstackIsAnError) {
  for (char const* family : {"ipv4", "ipv6"}) {
    SCOPED_TRACE(family);
    auto output = Execute({"network", "ip", "route", family, "list", "-N", "nosuch"});
    EXPECT_EQ(output->GetErrorMessages(), Messages{"Netstack instance nosuch does not exist"});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
}

TEST_F(RouteTest, HandlersReportTheHostTextAlone) {
  struct Case {
    Args args;
    char const* operation;
  };
  std::vector<Case> cases = {
      {{"ipv4", "add", "-n", "10.1.0.0/16", "-g", "192.168.10.3"},
       "RoutingInfoImpl::AddOrvikRoute"},
      {{"ipv4", "add", "-n", "10.1.0.0/16", "-g", "192.168.10.3", "-N", "defaultTcpipStack"},
       "RoutingInfoImpl::SetNetstackInstanceKey"},
      {{"ipv4", "remove", "-n", "10.50.0.0/16", "-g", "192.168.10.254"},
       "RoutingInfoImpl::RemoveOrvikRoute"},
      {{"ipv4", "remove", "-n", "default", "-g", "192.168.10.1"},
       "RoutingInfoImpl::GetOrvikDefaultGateway"},
      {{"ipv4", "remove", "-n", "default", "-g", "192.168.10.2"},
       "RoutingInfoImpl::GetOrvikConfigDefaultGateway"},
      {{"ipv4", "remove", "-n", "default", "-g", "192.168.10.1"},
       "RoutingInfoImpl::SetOrvikDefaultGateway"},
      {{"ipv4", "list"}, "RoutingInfoImpl::GetCurrentOrvikRoutes"},
      {{"ipv4", "list"}, "RoutingInfoImpl::GetDefaultGatewaySource"},
      {{"ipv6", "add", "-n", "fd00::/64", "-g", "fe80::3"}, "RoutingInfoImpl::AddIpv6OrvikRoute"},
      {{"ipv6", "remove", "-n", "fe80::/64", "-g", "::", "-N", "x"},
       "RoutingInfoImpl::SetNetstackInstanceKey"},
      {{"ipv6", "remove", "-n", "fe80::/64", "-g", "::"}, "RoutingInfoImpl::RemoveIpv6OrvikRoute"},
      {{"ipv6", "remove", "-n", "default", "-g", "fe80::1"},
       "RoutingInfoImpl::GetIpv6OrvikDefaultGateway"},
      {{"ipv6", "remove", "-n", "default", "-g", "fe80::2"},
       "RoutingInfoImpl::GetIpv6OrvikConfigDefaultGateway"},
      {{"ipv6", "remove", "-n", "default", "-g", "fe80::1"},
       "RoutingInfoImpl::SetIpv6OrvikDefaultGateway"},
      {{"ipv6", "list", "-N", "defaultTcpipStack"}, "RoutingInfoImpl::SetNetstackInstanceKey"},
      {{"ipv6", "list"}, "RoutingInfoImpl::GetCurrentIpv6OrvikRoutes"},
  };
  ASSERT_EQ(Ipv4Rows(), kDefaultIpv4);
  std::string before = StateFileText();
  for (auto const& c : cases) {
    Args args = {"network", "ip", "route"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    SCOPED_TRACE(c.args[0] + " " + c.args[1] + " " + c.operation);
    ClearFaults();
    InjectFault(c.operation, "routing table locked");
    ExpectFailure(args, "routing table locked");
  }
  EXPECT_EQ(StateFileText(), before);
}

}  // namespace
