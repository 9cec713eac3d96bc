// The neighbor and connection commands against the simulated host.
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
using TestSupport::SeededHostTest;

using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

class NeighborConnectionTest : public SeededHostTest {
 protected:
  // The first field of each row.
  std::vector<std::string> Firsts(Args const& args) {
    std::vector<std::string> firsts;
    for (auto const& row : Rows(args)) {
      auto start = row.find('=') + 1;
      firsts.push_back(row.substr(start, row.find(',') - start));
    }
    return firsts;
  }
  std::vector<std::string> Neighbors(Args extra = {}) {
    Args args = {"network", "ip", "neighbor", "list"};
    args.insert(args.end(), extra.begin(), extra.end());
    return Firsts(args);
  }
  void SetHostIpv6(bool enabled) {
    OrvkCtl::Sim::ChangeHost(
        [&](OrvkCtl::Sim::HostModel& host) { host.ip.ipv6_enabled = enabled; });
  }
  void ExpectTrue(Args const& args) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{});
    EXPECT_EQ(MetaText(output->GetRootObject()), "true");
  }
  void ExpectFailure(Args const& args, std::string const& message) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
};

const std::vector<std::string> kIpv4Neighbors = {"192.168.10.1", "192.168.10.2", "192.168.10.3",
                                                 "192.168.10.254"};
const std::vector<std::string> kIpv6Neighbors = {"fe80::1", "2001:db8:10::2",
                                                 "fe80::5054:ff:fe0a:1003"};

TEST_F(NeighborConnectionTest, NeighborListMergesBothFamilies) {
  auto rows = Rows({"network", "ip", "neighbor", "list"});
  ASSERT_EQ(rows.size(), 7u);
  EXPECT_EQ(rows[0],
            "{Neighbor=192.168.10.1,Mac Address=00:1b:21:3a:4f:01,Orvknic=orvk0,Expiry=1187,"
            "State=,Type=Dynamic}");
  EXPECT_EQ(rows[3],
            "{Neighbor=192.168.10.254,Mac Address=00:1b:21:3a:4f:fe,Orvknic=orvk0,Expiry=0,"
            "State=,Type=Static}");
  EXPECT_EQ(rows[5],
            "{Neighbor=2001:db8:10::2,Mac Address=52:54:00:0a:10:02,Orvknic=orvk0,Expiry=1143,"
            "State=Stale,Type=Dynamic}");
  struct Case {
    Args extra;
    bool ipv6;
    std::vector<std::string> expected;
  };
  std::vector<std::string> both = kIpv4Neighbors;
  both.insert(both.end(), kIpv6Neighbors.begin(), kIpv6Neighbors.end());
  std::vector<Case> cases = {
      {{"-v", "4"}, true, kIpv4Neighbors},
      {{"-v", "6"}, true, kIpv6Neighbors},
      {{"-v", "all", "-i", "orvk0"}, true, both},
      {{}, false, kIpv4Neighbors},
      {{"--version", "6"}, false, {}},
      {{"-N", "livehop"}, true, {}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.extra) + (c.ipv6 ? " ipv6 on" : " ipv6 off"));
    SetHostIpv6(c.ipv6);
    EXPECT_EQ(Neighbors(c.extra), c.expected);
  }
}

TEST_F(NeighborConnectionTest, ExpiryKeepsTheSignednessOfEachFamily) {
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    auto& routes = host.ip.routes[0];
    routes.ipv4_neighbors = {{"192.168.10.9", "52:54:00:00:00:09", "orvk0", -5, 0, 0}};
    routes.ipv6_neighbors = {{"fe80::9", "52:54:00:00:00:09", "orvk0", 4294967291, 0, 9}};
  });
  EXPECT_EQ(Rows({"network", "ip", "neighbor", "list"}),
            (std::vector<std::string>{
                "{Neighbor=192.168.10.9,Mac Address=52:54:00:00:00:09,Orvknic=orvk0,Expiry=-5,"
                "State=,Type=Dynamic}",
                "{Neighbor=fe80::9,Mac Address=52:54:00:00:00:09,Orvknic=orvk0,"
                "Expiry=4294967291,State=Unknown,Type=Dynamic}"}));
}

TEST_F(NeighborConnectionTest, NeighborCommandsRefuseAnUnknownInterface) {
  ExpectFailure({"network", "ip", "neighbor", "list", "-i", "nosuch"},
                "Unable to find a Orvik interface with the name nosuch");
  ExpectFailure(
      {"network", "ip", "neighbor", "remove", "-v", "4", "-a", "192.168.10.1", "-i", "nosuch"},
      "Unable to find a Orvik interface with the name nosuch");
}

TEST_F(NeighborConnectionTest, NeighborListHasNoHandler) {
  InjectFault("RoutingInfoImpl::GetCurrentIpv4OrvikNeighbors", "arp table busy");
  auto result = Run({"network", "ip", "neighbor", "list"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find("arp table busy"), std::string::npos) << result.err;
  ClearFaults();
  result = Run({"network", "ip", "neighbor", "list", "-N", "nosuch"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("Netstack instance nosuch does not exist"), std::string::npos)
      << result.err;
}

TEST_F(NeighborConnectionTest, NeighborRemoveTakesEntriesAway) {
  ExpectTrue({"network", "ip", "neighbor", "remove", "-v", "4", "-a", "192.168.10.2"});
  // With an interface named, its instance is used and --netstack is ignored.
  ExpectTrue({"network", "ip", "neighbor", "remove", "-v", "6", "-a", "FE80::1", "-i", "orvk0",
              "-N", "livehop"});
  Reload();
  EXPECT_EQ(Neighbors(), (std::vector<std::string>{"192.168.10.1", "192.168.10.3", "192.168.10.254",
                                                   "2001:db8:10::2", "fe80::5054:ff:fe0a:1003"}));
  ExpectFailure({"network", "ip", "neighbor", "remove", "-v", "4", "-a", "192.168.10.2"},
                "No neighbor entry for 192.168.10.2");
  ExpectFailure(
      {"network", "ip", "neighbor", "remove", "-v", "4", "-a", "192.168.10.1", "-N", "livehop"},
      "No neighbor entry for 192.168.10.1");
  ExpectFailure({"network", "ip", "neighbor", "remove", "-v", "4", "-a", "fe80::1"},
                "Invalid IPv4 address: fe80::1");
}

TEST_F(NeighborConnectionTest, NeighborRemoveOfIpv6IsSilentWhenIpv6IsOff) {
  SetHostIpv6(false);
  std::string before = StateFileText();
  ExpectTrue({"network", "ip", "neighbor", "remove", "-v", "6", "-a", "fe80::1"});
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(NeighborConnectionTest, ConnectionListShowsEveryProtocolInOrder) {
  auto rows = Rows({"network", "ip", "connection", "list"});
  ASSERT_EQ(rows.size(), 13u);
  EXPECT_EQ(rows[0],
            "{Proto=tcp,Recv Q=0,Send Q=0,Local Address=0.0.0.0:22,Foreign Address=0.0.0.0:0,"
            "State=LISTEN,World ID=2099215,CC Algo=newreno,World Name=sshd}");
  EXPECT_EQ(rows[1],
            "{Proto=tcp,Recv Q=0,Send Q=0,Local Address=[::]:22,Foreign Address=[::]:0,"
            "State=LISTEN,World ID=2099215,CC Algo=newreno,World Name=sshd}");
  EXPECT_EQ(rows[8],
            "{Proto=tcp,Recv Q=0,Send Q=0,Local Address=127.0.0.1:41870,"
            "Foreign Address=127.0.0.1:8307,State=TIME_WAIT,World ID=0,CC Algo=newreno,"
            "World Name=}");
  EXPECT_EQ(Firsts({"network", "ip", "connection", "list"}),
            (std::vector<std::string>{"tcp", "tcp", "tcp", "tcp", "tcp", "tcp", "tcp", "tcp", "tcp",
                                      "udp", "udp", "udp", "ip"}));
  EXPECT_EQ(Firsts({"network", "ip", "connection", "list", "-t", "udp"}),
            (std::vector<std::string>{"udp", "udp", "udp"}));
  EXPECT_EQ(Firsts({"network", "ip", "connection", "list", "--type", "ip"}),
            (std::vector<std::string>{"ip"}));
  EXPECT_EQ(Rows({"network", "ip", "connection", "list", "-N", "livehop"}),
            (std::vector<std::string>{
                "{Proto=tcp,Recv Q=0,Send Q=0,Local Address=0.0.0.0:8000,"
                "Foreign Address=0.0.0.0:0,State=LISTEN,World ID=2100342,CC Algo=cubic,"
                "World Name=livehop-mover}"}));
}

TEST_F(NeighborConnectionTest, StateWordsFollowTheTcpTable) {
  std::vector<std::string> words = {
      "CLOSED",     "LISTEN",     "SYN_SENT", "RCVD",     "ESTABLISHED",
      "CLOSE_WAIT", "FIN_WAIT_1", "CLOSING",  "LAST_ACK", "FIN_WAIT_2",
      "TIME_WAIT",  "",           ""};
  OrvkCtl::Sim::ChangeHost([&](OrvkCtl::Sim::HostModel& host) {
    host.ip.connections.clear();
    for (uint32_t state = 0; state < words.size(); ++state) {
      host.ip.connections.push_back({"livehop", "tcp", 1, 2, "::1", 22, "10.0.0.1", 65535,
                                     state == 12 ? 4000000000u : state, 77, ""});
    }
  });
  auto rows = Rows({"network", "ip", "connection", "list", "-N", "livehop"});
  ASSERT_EQ(rows.size(), words.size());
  for (size_t i = 0; i < words.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(rows[i],
              "{Proto=tcp,Recv Q=1,Send Q=2,Local Address=[::1]:22,"
              "Foreign Address=10.0.0.1:65535,State=" +
                  words[i] + ",World ID=77,CC Algo=,World Name=}");
  }
}

TEST_F(NeighborConnectionTest, ConnectionFailureDropsAllRows) {
  for (char const* operation :
       {"NetworkInfoImpl::GetCurrentUdpOrvikConnections", "ResourceInfoImpl::GetWorldName"}) {
    SCOPED_TRACE(operation);
    ClearFaults();
    InjectFault(operation, "socket table busy");
    ExpectFailure({"network", "ip", "connection", "list"},
                  "Unable to get connection list.\nsocket table busy");
  }
  ClearFaults();
  ExpectFailure({"network", "ip", "connection", "list", "-N", "nosuch"},
                "Unable to get connection list.\nNetstack instance nosuch does not exist");
}

TEST_F(NeighborConnectionTest, ToolPrintsTablesWithUnits) {
  auto result = Run({"network", "ip", "neighbor", "list", "-v", "4"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.find("Neighbor"), 0u) << result.out;
  EXPECT_NE(result.out.find("1187 sec"), std::string::npos) << result.out;
  result = Run({"--formatter", "csv", "network", "ip", "connection", "list", "-t", "ip"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("net-probe"), std::string::npos) << result.out;
}

}  // namespace
