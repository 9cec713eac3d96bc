// Netqueue commands: load balancer settings, state, plugins, queue counts and
// filter classes against the simulated host.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/harness.h"
#include "support/meta_text.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace {

using Args = std::vector<std::string>;
using TestSupport::HostTest;
using TestSupport::MetaText;

using NetqueueTest = HostTest;

TEST_F(NetqueueTest, ReadCommandsOfTheDefaultHost) {
  // ornic4 has no netqueue and makes no row in any of them.
  EXPECT_EQ(Ok({"network", "nic", "queue", "count", "get"}),
            "[{NIC=ornic0,Tx netqueue count=4,Rx netqueue count=4},"
            "{NIC=ornic1,Tx netqueue count=4,Rx netqueue count=4},"
            "{NIC=ornic2,Tx netqueue count=16,Rx netqueue count=16},"
            "{NIC=ornic3,Tx netqueue count=16,Rx netqueue count=16}]");
  auto settings = Ok({"network", "nic", "queue", "loadbalancer", "list"});
  // Not-applicable settings keep "N" whatever the device supports.
  EXPECT_NE(settings.find("{NIC=ornic0,RxQPair=SA,RxQNoFeature=NA,PreEmptibleQ=UD,RxQLatency=UD,"
                          "RxDynamicLB=NA,DynamicQPool=SA,MacLearnLB=NA,RSS=UD,LRO=UD,"
                          "GeneveOAM=UD,RSSLRO=UD}"),
            std::string::npos)
      << settings;
  EXPECT_NE(settings.find("{NIC=ornic2,RxQPair=SA,RxQNoFeature=NA,PreEmptibleQ=SA,RxQLatency=UD,"
                          "RxDynamicLB=NA,DynamicQPool=SA,MacLearnLB=NA,RSS=SA,LRO=SA,"
                          "GeneveOAM=SA,RSSLRO=SD}"),
            std::string::npos)
      << settings;
  EXPECT_EQ(settings.find("ornic4"), std::string::npos) << settings;
  auto classes = Ok({"network", "nic", "queue", "filterclass", "list"});
  EXPECT_NE(classes.find("{NIC=ornic1,MacOnly=true,VlanOnly=true,VlanMac=true,Vxlan=false,"
                         "Geneve=false,GenericEncap=false}"),
            std::string::npos)
      << classes;
  EXPECT_NE(classes.find("{NIC=ornic3,MacOnly=true,VlanOnly=true,VlanMac=true,Vxlan=true,"
                         "Geneve=true,GenericEncap=false}]"),
            std::string::npos)
      << classes;
  EXPECT_EQ(Ok({"network", "nic", "queue", "loadbalancer", "state", "list", "-n", "ornic3"}),
            "[{NIC=ornic3,Enabled=true}]");
  // The same module with another plugin name does not make a plugin enabled.
  EXPECT_EQ(Ok({"network", "nic", "queue", "loadbalancer", "plugin", "list", "-n", "ornic2"}),
            "[{NIC=ornic2,Module Name=nqbal,Plugin Name=load-based,Enabled=true,"
            "Description=Spreads filters over queues by load},"
            "{NIC=ornic2,Module Name=kmnet,Plugin Name=rss,Enabled=true,"
            "Description=Spreads one filter's flows over an RSS queue set},"
            "{NIC=ornic2,Module Name=kmnet,Plugin Name=lro,Enabled=false,"
            "Description=Gives LRO queues to bulk receive flows}]");
}

TEST_F(NetqueueTest, TablesThroughTheExecutable) {
  auto result = Run({"network", "nic", "queue", "loadbalancer", "list"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.substr(0, result.out.find('\n')),
            "NIC     RxQPair  RxQNoFeature  PreEmptibleQ  RxQLatency  RxDynamicLB  DynamicQPool  "
            "MacLearnLB  RSS  LRO  GeneveOAM  RSSLRO");
  result = Run({"--formatter", "csv", "network", "nic", "queue", "count", "get", "-n", "ornic0"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "NIC,Tx netqueue count,Rx netqueue count\nornic0,4,4\n");
}

TEST_F(NetqueueTest, UnknownUplinkIsWordedByCommand) {
  struct Case {
    Args args;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"network", "nic", "queue", "loadbalancer", "state", "list", "-n", "ornic9"},
       "Invalid PNIC name ornic9"},
      {{"network", "nic", "queue", "loadbalancer", "state", "set", "-n", "ornic9", "-e", "true"},
       "Invalid PNIC name ornic9"},
      {{"network", "nic", "queue", "loadbalancer", "plugin", "list", "-n", "ornic9"},
       "Invalid PNIC name ornic9"},
      {{"network", "nic", "queue", "loadbalancer", "plugin", "set", "-n", "ornic9", "-e", "true",
        "-m", "nqbal", "-p", "load-based"},
       "Invalid PNIC name ornic9"},
      {{"network", "nic", "queue", "count", "get", "-n", "ornic9"},
       "Pnic with name ornic9 not found"},
      {{"network", "nic", "queue", "count", "set", "-n", "ornic9", "--tx", "true", "-q", "2"},
       "Pnic with name ornic9 not found"},
      {{"network", "nic", "queue", "loadbalancer", "set", "-n", "ornic9", "--rsslb", "true"},
       "Pnic with name ornic9 not found"},
  };
  for (auto const& c : cases) Refused(c.args, {c.message});
}

TEST_F(NetqueueTest, DeviceWithoutNetqueue) {
  // Named, the library's message is the command's; in a walk, no row.
  std::string const message = "Netqueue is not supported by ornic4";
  Refused({"network", "nic", "queue", "loadbalancer", "state", "list", "-n", "ornic4"}, {message});
  Refused({"network", "nic", "queue", "loadbalancer", "plugin", "list", "-n", "ornic4"}, {message});
  Refused({"network", "nic", "queue", "count", "get", "-n", "ornic4"}, {message});
  Refused({"network", "nic", "queue", "count", "set", "-n", "ornic4", "-r", "1", "-q", "2"},
          {message});

  InjectFault("PnicImpl::GetNetqueueInfo", "netqueue busy");
  for (Args args : {Args{"network", "nic", "queue", "loadbalancer", "list"},
                    Args{"network", "nic", "queue", "loadbalancer", "state", "list"},
                    Args{"network", "nic", "queue", "loadbalancer", "plugin", "list"},
                    Args{"network", "nic", "queue", "count", "get"},
                    Args{"network", "nic", "queue", "filterclass", "list"}}) {
    SCOPED_TRACE(args[3]);
    EXPECT_EQ(Ok(args), "[]");
  }
  auto output = Execute({"network", "nic", "queue", "count", "get", "-n", "ornic0"});
  EXPECT_EQ(output->GetErrorMessages(), std::vector<std::string>{"netqueue busy"});
  EXPECT_EQ(output->GetRootObject(), nullptr);
}

TEST_F(NetqueueTest, WritesPersistAndShowInTheReads) {
  EXPECT_EQ(Ok({"network", "nic", "queue", "loadbalancer", "set", "-n", "ornic2", "--rsslrolb",
                "true", "--lrolb", "false"}),
            "true");
  EXPECT_EQ(Ok({"network", "nic", "queue", "loadbalancer", "state", "set", "-n", "ornic0", "-e",
                "false"}),
            "true");
  EXPECT_EQ(Ok({"network", "nic", "queue", "loadbalancer", "plugin", "set", "-n", "ornic2", "-e",
                "true", "-m", "kmnet", "-p", "lro"}),
            "true");
  // --tx given as false counts as given.
  EXPECT_EQ(
      Ok({"network", "nic", "queue", "count", "set", "-n", "ornic1", "--tx", "false", "-q", "6"}),
      "true");
  EXPECT_EQ(Ok({"network", "nic", "queue", "count", "set", "-n", "ornic3", "-t", "1", "-r", "1",
                "-q", "32"}),
            "true");
  Reload();
  auto settings = Ok({"network", "nic", "queue", "loadbalancer", "list"});
  EXPECT_NE(settings.find("{NIC=ornic2,RxQPair=SA,RxQNoFeature=NA,PreEmptibleQ=SA,RxQLatency=UD,"
                          "RxDynamicLB=NA,DynamicQPool=SA,MacLearnLB=NA,RSS=SA,LRO=SD,"
                          "GeneveOAM=SA,RSSLRO=SA}"),
            std::string::npos)
      << settings;
  EXPECT_EQ(Ok({"network", "nic", "queue", "loadbalancer", "state", "list", "-n", "ornic0"}),
            "[{NIC=ornic0,Enabled=false}]");
  EXPECT_NE(Ok({"network", "nic", "queue", "loadbalancer", "plugin", "list", "-n", "ornic2"})
                .find("Plugin Name=lro,Enabled=true"),
            std::string::npos);
  EXPECT_EQ(Ok({"network", "nic", "queue", "count", "get", "-n", "ornic1"}),
            "[{NIC=ornic1,Tx netqueue count=6,Rx netqueue count=4}]");
  EXPECT_EQ(Ok({"network", "nic", "queue", "count", "get", "-n", "ornic3"}),
            "[{NIC=ornic3,Tx netqueue count=32,Rx netqueue count=32}]");
}

TEST_F(NetqueueTest, WritesWithNothingToApplyTouchNothing) {
  // Even a device without netqueue answers true: no write is tried.
  InjectFault("PnicImpl::SetNetqueueInfo", "must not be called");
  for (Args args : {Args{"network", "nic", "queue", "loadbalancer", "set", "-n", "ornic4"},
                    Args{"network", "nic", "queue", "count", "set", "-n", "ornic4", "-q", "3"}}) {
    SCOPED_TRACE(args[3]);
    EXPECT_EQ(Ok(args), "true");
  }
}

TEST_F(NetqueueTest, HostRefusalsChangeNothing) {
  Refused({"network", "nic", "queue", "loadbalancer", "set", "-n", "ornic0", "--rxqpair", "false",
           "--rsslb", "true"},
          {"Load balancer setting RSS is not supported by ornic0"});
  Refused({"network", "nic", "queue", "count", "set", "-n", "ornic0", "-t", "true", "-q", "9"},
          {"TX netqueue count 9 of ornic0 is out of range 1 to 8"});
  Refused({"network", "nic", "queue", "loadbalancer", "plugin", "set", "-n", "ornic0", "-e", "true",
           "-m", "kmnet", "-p", "rss"},
          {"Netqueue balancer plugin rss of module kmnet not found on ornic0"});
  // The count goes to the host as 32 bits: 4294967296 is 0.
  Refused(
      {"network", "nic", "queue", "count", "set", "-n", "ornic0", "-r", "true", "-q", "4294967296"},
      {"RX netqueue count 0 of ornic0 is out of range 1 to 8"});
  InjectFault("PnicImpl::SetNetqueueInfo", "driver refused");
  Refused({"network", "nic", "queue", "loadbalancer", "state", "set", "-n", "ornic0", "-e", "true"},
          {"driver refused"});
}

}  // namespace
