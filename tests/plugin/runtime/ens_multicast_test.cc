// ENS contexts and the multicast groups of the host's interfaces.
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

class EnsTest : public HostTest {
 protected:
  std::string Lcores() { return Ok({"network", "ens", "lcore", "list"}); }
};

TEST_F(EnsTest, DefaultContexts) {
  EXPECT_EQ(Lcores(),
            "[{Lcore ID=0,Switch=DSwitch-Prod,Affinity=0},{Lcore ID=1,Switch=DSwitch-Prod,"
            "Affinity=1},{Lcore ID=2,Switch=null,Affinity=-1}]");
  EXPECT_EQ(Ok({"network", "ens", "maxLcores", "get"}), "8");
  EXPECT_EQ(Ok({"network", "ens", "lcore", "switch", "get", "-l", "1"}), "DSwitch-Prod");
  EXPECT_EQ(Ok({"network", "ens", "lcore", "affinity", "get", "-l", "2"}), "-1");

  auto result = Run({"network", "ens", "maxLcores", "get"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "8\n");
  result = Run({"network", "ens", "lcore", "list"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.substr(0, result.out.find('\n')), "Lcore ID  Switch        Affinity");
}

TEST_F(EnsTest, ChangesPersist) {
  struct Step {
    Args args;
    char const* root;
  };
  std::vector<Step> steps = {
      {{"network", "ens", "lcore", "add", "-l", "5"}, "true"},
      {{"network", "ens", "lcore", "switch", "add", "-l", "5", "-s", "vSwitch1"}, "true"},
      {{"network", "ens", "lcore", "affinity", "set", "-l", "5", "-a", "1"}, "true"},
      {{"network", "ens", "lcore", "switch", "remove", "-l", "0"}, "true"},
      {{"network", "ens", "lcore", "remove", "-l", "0"}, "true"},
      {{"network", "ens", "maxLcores", "set", "-n", "6"}, "true"},
  };
  for (auto const& step : steps) {
    SCOPED_TRACE(step.args[3] + " " + step.args[4]);
    EXPECT_EQ(Ok(step.args), step.root);
  }
  Reload();
  EXPECT_EQ(Lcores(),
            "[{Lcore ID=1,Switch=DSwitch-Prod,Affinity=1},{Lcore ID=2,Switch=null,Affinity=-1},"
            "{Lcore ID=5,Switch=vSwitch1,Affinity=1}]");
  EXPECT_EQ(Ok({"network", "ens", "maxLcores", "get"}), "6");
  // Removing the switch of a context without one still asks the host.
  EXPECT_EQ(Ok({"network", "ens", "lcore", "switch", "remove", "-l", "2"}), "true");
  EXPECT_EQ(Ok({"network", "ens", "lcore", "switch", "get", "-l", "2"}), "null");
}

TEST_F(EnsTest, TheHostSaysNoWithFalse) {
  struct Case {
    Args args;
  };
  std::vector<Args> refusals = {
      // still associated with a switch
      {"network", "ens", "lcore", "remove", "-l", "1"},
      // associated with another switch
      {"network", "ens", "lcore", "switch", "add", "-l", "0", "-s", "vSwitch0"},
      // context 2 would fall beyond the maximum
      {"network", "ens", "maxLcores", "set", "-n", "2"},
  };
  Lcores();
  std::string before = StateFileText();
  for (auto const& args : refusals) {
    SCOPED_TRACE(args[3] + " " + args[4] + " " + args.back());
    std::vector<std::string> errors;
    EXPECT_EQ(RootAndMessages(args, errors), "false");
    EXPECT_TRUE(errors.empty());
  }
  Reload();
  EXPECT_EQ(StateFileText(), before);
  auto result = Run({"network", "ens", "lcore", "remove", "-l", "1"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "false\n");
}

TEST_F(EnsTest, TheHostsErrorsAreShown) {
  struct Case {
    Args args;
    char const* message;
  };
  std::vector<Case> cases = {
      {{"network", "ens", "lcore", "add", "-l", "1"}, "ENS context 1 already exists"},
      {{"network", "ens", "lcore", "add", "-l", "8"}, "ENS context id 8 is out of range 0 to 7"},
      {{"network", "ens", "lcore", "remove", "-l", "7"}, "ENS context 7 not found"},
      {{"network", "ens", "lcore", "switch", "get", "-l", "7"}, "ENS context 7 not found"},
      {{"network", "ens", "lcore", "affinity", "get", "-l", "7"}, "ENS context 7 not found"},
      {{"network", "ens", "lcore", "switch", "add", "-l", "2", "-s", "vSwitch9"},
       "Virtual switch vSwitch9 not found"},
      {{"network", "ens", "maxLcores", "set", "-n", "0"},
       "Maximum number of ENS contexts 0 is out of range 1 to 32"},
      {{"network", "ens", "lcore", "affinity", "set", "-l", "2", "-a", "4"},
       "NUMA node 4 does not exist: the host has 2 NUMA nodes"},
      {{"network", "ens", "lcore", "affinity", "set", "-l", "2", "-a", "-1"},
       "NUMA node -1 does not exist: the host has 2 NUMA nodes"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    std::vector<std::string> errors;
    EXPECT_EQ(RootAndMessages(c.args, errors), "(none)");
    EXPECT_EQ(errors, std::vector<std::string>{c.message});
  }
  InjectFault("NetworkInfo::GetLcoreAffinity", "lcore table locked");
  std::vector<std::string> errors;
  EXPECT_EQ(RootAndMessages({"network", "ens", "lcore", "list"}, errors), "(none)");
  EXPECT_EQ(errors, std::vector<std::string>{"lcore table locked"});
}

using MulticastTest = EnsTest;

TEST_F(MulticastTest, GroupsFollowTheInterfacesAddresses) {
  EXPECT_EQ(Ok({"network", "multicast", "group", "list"}),
            "[{Interface=orvk0,Refcount=1,Group=224.0.0.1,Link Layer=01:00:5e:00:00:01},"
            "{Interface=orvk0,Refcount=1,Group=ff02::1,Link Layer=33:33:00:00:00:01},"
            "{Interface=orvk0,Refcount=1,Group=ff02::1:ff00:1000,Link Layer=33:33:ff:00:10:00},"
            "{Interface=orvk0,Refcount=1,Group=ff02::1:ff00:21,Link Layer=33:33:ff:00:00:21},"
            "{Interface=orvk0,Refcount=1,Group=239.255.10.1,Link Layer=01:00:5e:7f:0a:01}]");
  // A second address with the same last 24 bits shares the solicited-node
  // group; a new interface without addresses joins nothing.
  EXPECT_EQ(Ok({"network", "ip", "interface", "ipv6", "address", "add", "-i", "orvk0", "-I",
                "2001:db8:99::21/64"}),
            "true");
  EXPECT_EQ(Ok({"network", "ip", "interface", "add", "-p", "VM Network"}), "true");
  Reload();
  auto rows = Ok({"network", "multicast", "group", "list"});
  EXPECT_NE(rows.find("{Interface=orvk0,Refcount=2,Group=ff02::1:ff00:21,"), std::string::npos)
      << rows;
  EXPECT_EQ(rows.find("orvk1"), std::string::npos) << rows;

  auto result = Run({"network", "multicast", "group", "list"});
  ASSERT_EQ(result.status, 0) << result.err;
  // The directive names no type of these rows: the structure's own order.
  std::string header = result.out.substr(0, result.out.find('\n'));
  EXPECT_EQ(header.substr(0, 27), "Interface  Refcount  Group ") << header;
  EXPECT_EQ(header.substr(header.size() - 10), "Link Layer") << header;

  InjectFault("OrvkNicImpl::GetMulticastGroups", "interface busy");
  std::vector<std::string> errors;
  EXPECT_EQ(RootAndMessages({"network", "multicast", "group", "list"}, errors), "(none)");
  EXPECT_EQ(errors, std::vector<std::string>{"interface busy"});
}

TEST_F(EnsTest, EmptyTablesGiveEmptyLists) {
  for (char const* id : {"0", "1"}) {
    EXPECT_EQ(Ok({"network", "ens", "lcore", "switch", "remove", "-l", id}), "true");
  }
  for (char const* id : {"0", "1", "2"}) {
    EXPECT_EQ(Ok({"network", "ens", "lcore", "remove", "-l", id}), "true");
  }
  EXPECT_EQ(Lcores(), "[]");
  // A disabled interface is in no group.
  EXPECT_EQ(Ok({"network", "ip", "interface", "set", "-i", "orvk0", "-e", "false"}), "true");
  EXPECT_EQ(Ok({"network", "multicast", "group", "list"}), "[]");
  auto result = Run({"--formatter", "csv", "network", "multicast", "group", "list"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "Interface,Refcount,Group,Link Layer\n");
}

TEST_F(EnsTest, EachCommandHandsOnItsOperationsFailure) {
  struct Case {
    Args args;
    char const* operation;
  };
  std::vector<Case> cases = {
      {{"network", "ens", "maxLcores", "get"}, "NetworkInfo::GetMaxLcores"},
      {{"network", "ens", "maxLcores", "set", "-n", "4"}, "NetworkInfo::SetMaxLcores"},
      {{"network", "ens", "lcore", "add", "-l", "3"}, "NetworkInfo::AddLcore"},
      {{"network", "ens", "lcore", "remove", "-l", "2"}, "NetworkInfo::RemoveLcore"},
      {{"network", "ens", "lcore", "list"}, "NetworkInfo::GetLcoreList"},
      {{"network", "ens", "lcore", "switch", "get", "-l", "0"}, "NetworkInfo::GetLcoreSwitch"},
      {{"network", "ens", "lcore", "switch", "add", "-l", "2", "-s", "vSwitch0"},
       "NetworkInfo::AddLcoreSwitch"},
      {{"network", "ens", "lcore", "switch", "remove", "-l", "0"}, "NetworkInfo::AddLcoreSwitch"},
      {{"network", "ens", "lcore", "affinity", "get", "-l", "0"}, "NetworkInfo::GetLcoreAffinity"},
      {{"network", "ens", "lcore", "affinity", "set", "-l", "0", "-a", "1"},
       "NetworkInfo::SetLcoreAffinity"},
      {{"network", "multicast", "group", "list"}, "HostFactory::GetHost"},
      {{"network", "multicast", "group", "list"}, "NetworkInfoImpl::GetOrvikNicInfo"},
      {{"network", "multicast", "group", "list"}, "OrvikNicInfoImpl::GetOrvikNics"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.operation);
    ClearFaults();
    InjectFault(c.operation, std::string(c.operation) + " failed");
    std::vector<std::string> errors;
    EXPECT_EQ(RootAndMessages(c.args, errors), "(none)");
    EXPECT_EQ(errors, std::vector<std::string>{std::string(c.operation) + " failed"});
  }
}

}  // namespace
