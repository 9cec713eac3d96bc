// The netstack instance commands, the global IP settings, and the netstack
// option shared by the IP commands, against the simulated host.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_store.h"
#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"

namespace {

using TestSupport::HostTest;
using TestSupport::MetaText;
using Args = std::vector<std::string>;
using Messages = std::vector<std::string>;

const std::string kLivehop =
    "{Key=livehop,Name=livehop,Enabled=true,Max Connections=5000,Current Max Connections=5000,"
    "Congestion Control Algorithm=cubic,IPv6 Enabled=true,Current IPv6 Enabled=true,"
    "ECN Status=enabled,State=4660}";

class NetstackTest : public HostTest {
 protected:
  // Seeds the state file, so that it can be compared before and after.
  void SetUp() override {
    HostTest::SetUp();
    Execute({"network", "ip", "get"});
  }
  // The root as text; expects no message.
  std::string Result(Args const& args) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{});
    return MetaText(output->GetRootObject());
  }
  std::string Get(std::string const& key) {
    return Result({"network", "ip", "netstack", "get", "-N", key});
  }
  std::string List() { return Result({"network", "ip", "netstack", "list"}); }
  // Expects no root and exactly `message`.
  void ExpectFailure(Args const& args, std::string const& message) {
    auto output = Execute(args);
    EXPECT_EQ(output->GetErrorMessages(), Messages{message});
    EXPECT_EQ(output->GetRootObject(), nullptr);
  }
};

TEST_F(NetstackTest, DefaultHostHasTheDefaultAndOneDedicatedInstance) {
  EXPECT_EQ(List(),
            "[{Key=defaultTcpipStack,Name=defaultTcpipStack,State=4660},"
            "{Key=livehop,Name=livehop,State=4660}]");
  EXPECT_EQ(Get("livehop"), "[" + kLivehop + "]");
  auto printed = Run({"network", "ip", "netstack", "list"});
  ASSERT_EQ(printed.status, 0) << printed.err;
  EXPECT_NE(printed.out.find("livehop"), std::string::npos);
  EXPECT_NE(printed.out.find("4660"), std::string::npos);
}

TEST_F(NetstackTest, AddedInstancesHaveTheNewInstanceDefaultsAndSurviveAReload) {
  EXPECT_EQ(Result({"network", "ip", "netstack", "add", "-N", "backup"}), "true");
  EXPECT_EQ(Result({"network", "ip", "netstack", "add", "--netstack", "staging", "--disabled"}),
            "true");
  Reload();
  EXPECT_EQ(Get("backup"),
            "[{Key=backup,Name=backup,Enabled=true,Max Connections=11000,Current Max "
            "Connections=11000,Congestion Control Algorithm=newreno,IPv6 Enabled=true,Current "
            "IPv6 Enabled=true,ECN Status=enabled,State=4660}]");
  // Only in the configuration: nothing in force.
  EXPECT_EQ(Get("staging"),
            "[{Key=staging,Name=staging,Enabled=false,Max Connections=11000,Current Max "
            "Connections=0,Congestion Control Algorithm=newreno,IPv6 Enabled=true,Current IPv6 "
            "Enabled=false,ECN Status=enabled,State=0}]");
  // A new instance has a routing table of its own, empty.
  EXPECT_EQ(Result({"network", "ip", "route", "ipv4", "list", "-N", "backup"}), "[]");

  EXPECT_EQ(Result({"network", "ip", "netstack", "remove", "-N", "backup"}), "true");
  EXPECT_EQ(Result({"network", "ip", "netstack", "remove", "-N", "staging"}), "true");
  EXPECT_EQ(List(),
            "[{Key=defaultTcpipStack,Name=defaultTcpipStack,State=4660},"
            "{Key=livehop,Name=livehop,State=4660}]");
  // Its routes went with it.
  ExpectFailure({"network", "ip", "route", "ipv4", "list", "-N", "backup"},
                "Netstack instance backup does not exist");
}

TEST_F(NetstackTest, SetChangesEachSettingAndEnableAppliesTheConfiguredOnes) {
  EXPECT_EQ(Result({"network", "ip", "netstack", "set", "-N", "livehop", "-n", "Live Hop", "-m",
                    "20000", "-c", "newreno", "-i", "false", "--ecn", "echo-only"}),
            "true");
  EXPECT_EQ(Get("livehop"),
            "[{Key=livehop,Name=Live Hop,Enabled=true,Max Connections=20000,Current Max "
            "Connections=5000,Congestion Control Algorithm=newreno,IPv6 Enabled=false,Current "
            "IPv6 Enabled=true,ECN Status=echo-only,State=4660}]");
  EXPECT_EQ(Result({"network", "ip", "netstack", "set", "-N", "livehop", "-e", "false"}), "true");
  EXPECT_EQ(List(),
            "[{Key=defaultTcpipStack,Name=defaultTcpipStack,State=4660},"
            "{Key=livehop,Name=Live Hop,State=0}]");
  EXPECT_EQ(Result({"network", "ip", "netstack", "set", "-N", "livehop", "-e", "true"}), "true");
  Reload();
  EXPECT_EQ(Get("livehop"),
            "[{Key=livehop,Name=Live Hop,Enabled=true,Max Connections=20000,Current Max "
            "Connections=20000,Congestion Control Algorithm=newreno,IPv6 Enabled=false,Current "
            "IPv6 Enabled=false,ECN Status=echo-only,State=4660}]");
}

TEST_F(NetstackTest, SetWithoutOptionsOrWithAnEmptyNameChangesNothing) {
  std::string before = StateFileText();
  EXPECT_EQ(Result({"network", "ip", "netstack", "set", "-N", "livehop"}), "true");
  EXPECT_EQ(Result({"network", "ip", "netstack", "set", "-N", "livehop", "-n", ""}), "true");
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(NetstackTest, FailuresReportTheirMessagesAndChangeNothing) {
  struct Case {
    Args args;
    std::string message;
  };
  std::vector<Case> const cases = {
      {{"get", "-N", "nope"}, "Unable to find a Netstack instance nope"},
      {{"set", "-N", "nope", "-n", "x"}, "Unable to find a Netstack instance nope"},
      {{"add", "-N", "livehop"},
       "Unable to add Netstack Instance. Error was : Netstack instance livehop already exists"},
      {{"add", "-N", "bad key"},
       "Unable to add Netstack Instance. Error was : Invalid netstack instance key bad key: only "
       "letters, digits, '_' and '-' are allowed"},
      {{"remove", "-N", "nope"},
       "Unable to Remove Netstack Instance. Error was : Netstack instance nope does not exist"},
      {{"remove", "-N", "defaultTcpipStack"},
       "Unable to Remove Netstack Instance. Error was : The default netstack instance "
       "defaultTcpipStack cannot be disabled or removed"},
      {{"set", "-N", "defaultTcpipStack", "-e", "false"},
       "Error setting configurationThe default netstack instance defaultTcpipStack cannot be "
       "disabled or removed"},
      {{"set", "-N", "livehop", "-m", "0"},
       "Error setting configurationInvalid maximum number of connections 0: it must be between "
       "1000 and 1000000"},
  };
  std::string before = StateFileText();
  for (auto const& c : cases) {
    Args args = {"network", "ip", "netstack"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    SCOPED_TRACE(c.args[0] + " " + c.args[2]);
    ExpectFailure(args, c.message);
    EXPECT_EQ(StateFileText(), before);
  }
  // The framework refuses an algorithm the host does not offer.
  EXPECT_EQ(Run({"network", "ip", "netstack", "set", "-N", "livehop", "-c", "bbr"}).status, 2);
  EXPECT_EQ(Run({"network", "ip", "netstack", "set", "-N", "livehop", "--ecn", "on"}).status, 2);
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(NetstackTest, SetStopsAtTheFirstFailureAndKeepsWhatWentBefore) {
  ExpectFailure({"network", "ip", "netstack", "set", "-N", "livehop", "-n", "renamed", "-m", "1",
                 "--ecn", "disabled"},
                "Error setting configurationInvalid maximum number of connections 1: it must be "
                "between 1000 and 1000000");
  std::string after = Get("livehop");
  EXPECT_NE(after.find("Name=renamed"), std::string::npos);
  EXPECT_NE(after.find("Max Connections=5000"), std::string::npos);
  EXPECT_NE(after.find("ECN Status=enabled"), std::string::npos);
}

TEST_F(NetstackTest, AnInstanceWithInterfacesCannotBeRemovedOrDisabled) {
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) {
    OrvkCtl::Sim::InterfaceState nic;
    nic.name = "orvk5";
    nic.netstack = "livehop";
    host.ip.interfaces.push_back(nic);
  });
  ExpectFailure({"network", "ip", "netstack", "remove", "-N", "livehop"},
                "Unable to Remove Netstack Instance. Error was : Netstack instance livehop still "
                "has interfaces (orvk5); remove them first");
  ExpectFailure({"network", "ip", "netstack", "set", "-N", "livehop", "-e", "false"},
                "Error setting configurationNetstack instance livehop still has interfaces "
                "(orvk5); remove them first");
}

TEST_F(NetstackTest, GlobalIpv6SettingIsReadAndWrittenAndWaitsForTheNextStart) {
  EXPECT_EQ(Result({"network", "ip", "get"}), "{IPv6 Enabled=true}");
  std::string before = StateFileText();
  EXPECT_EQ(Result({"network", "ip", "set"}), "true");
  EXPECT_EQ(StateFileText(), before);
  auto const neighbors = Rows({"network", "ip", "neighbor", "list", "-v", "6"});
  EXPECT_EQ(neighbors.size(), 3u);
  EXPECT_EQ(Result({"network", "ip", "set", "-e", "false"}), "true");
  Reload();
  EXPECT_EQ(Result({"network", "ip", "get"}), "{IPv6 Enabled=false}");
  // The neighbor list shows IPv6 rows only while the setting is on; the
  // host keeps them until it starts again, so they come back at once.
  EXPECT_EQ(Rows({"network", "ip", "neighbor", "list", "-v", "6"}).size(), 0u);
  EXPECT_EQ(Result({"network", "ip", "set", "-e", "true"}), "true");
  EXPECT_EQ(Rows({"network", "ip", "neighbor", "list", "-v", "6"}), neighbors);
}

TEST_F(NetstackTest, HostFailuresReachTheHandlers) {
  struct Case {
    Args args;
    std::string operation;
    std::string message;
  };
  std::vector<Case> const cases = {
      {{"netstack", "list"}, "NetworkInfoImpl::ListNetstackInstances", "boom"},
      {{"netstack", "list"}, "NetstackInstanceImpl::Refresh", "boom"},
      {{"netstack", "get", "-N", "livehop"},
       "NetstackInstanceImpl::GetEcnStatus",
       "Error getting Netstack instance configuration. . Error was : boom"},
      {{"netstack", "add", "-N", "x"},
       "NetworkInfoImpl::AddNetstackInstance",
       "Unable to add Netstack Instance. Error was : boom"},
      {{"netstack", "remove", "-N", "livehop"},
       "NetworkInfoImpl::RemoveNetstackInstance",
       "Unable to Remove Netstack Instance. Error was : boom"},
      {{"netstack", "set", "-N", "livehop", "--ecn", "disabled"},
       "NetstackInstanceImpl::SetEcnStatus",
       "Error setting configurationboom"},
      {{"netstack", "set", "-N", "livehop", "-n", "x"},
       "NetworkInfoImpl::LookupNetstackInstanceByKey",
       "Error setting configurationboom"},
      {{"get"}, "NetworkInfoImpl::IsOrvkIpv6Enabled", "boom"},
      {{"set", "-e", "true"}, "NetworkInfoImpl::SetOrvkIpv6Enabled", "boom"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    InjectFault(c.operation, "boom");
    Args args = {"network", "ip"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    ExpectFailure(args, c.message);
    ClearFaults();
  }
}

TEST_F(NetstackTest, RouteCommandsChooseTheirInstanceThroughTheSharedOption) {
  // Given: that instance; absent or empty: the default one.
  EXPECT_EQ(Result({"network", "ip", "route", "ipv6", "list", "-N", "livehop"}), "[]");
  EXPECT_NE(Result({"network", "ip", "route", "ipv4", "list", "-N", ""}), "[]");
  ExpectFailure({"network", "ip", "route", "ipv4", "add", "-n", "10.9.0.0/16", "-g", "10.0.0.1",
                 "-N", "nope"},
                "Netstack instance nope does not exist");
}

}  // namespace
