// The simulated library's netqueue writes, ENS contexts and the state file
// form of what they keep.
#include <gtest/gtest.h>

#include <string>

#include "host_store.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "support/harness.h"

namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::NetworkInfo;
using HostCtl::Network::PnicNetqueueInfo;
using OrvkCtl::Network::PnicImpl;
using OrvkCtl::Sim::HostModel;
using TestSupport::HostTest;

class NetqueueEnsTest : public HostTest {};

TEST_F(NetqueueEnsTest, ARefusedNetqueueWriteAppliesNothing) {
  PnicImpl pnic("ornic2");
  PnicNetqueueInfo info;
  info.settingsMask = PnicNetqueueInfo::SETTING_RSS;  // allowed false: disallow RSS
  info.applyBalancerState = true;                     // balancer off
  info.applyRxQueueCount = true;
  info.rxQueueCount = 33;  // beyond the maximum of 32
  EXPECT_THROW(pnic.SetNetqueueInfo(info), HostCtlException);
  Reload();
  PnicNetqueueInfo after;
  PnicImpl(std::string("ornic2")).GetNetqueueInfo(after);
  EXPECT_TRUE(after.allowed[7]);
  EXPECT_TRUE(after.balancerEnabled);
  EXPECT_EQ(after.rxQueueCount, 16u);
}

TEST_F(NetqueueEnsTest, ContextIdsStaySortedAndBelowTheMaximum) {
  EXPECT_TRUE(NetworkInfo::AddLcore(7));
  EXPECT_TRUE(NetworkInfo::AddLcore(4));
  EXPECT_EQ(NetworkInfo::GetLcoreList(), (std::vector<unsigned long>{0, 1, 2, 4, 7}));
  // Shrinking below a context in use is declined, down to just above it is not.
  EXPECT_FALSE(NetworkInfo::SetMaxLcores(7));
  EXPECT_TRUE(NetworkInfo::SetMaxLcores(8));
  EXPECT_THROW(NetworkInfo::SetMaxLcores(33), HostCtlException);
  // Associating again with the same switch is accepted.
  EXPECT_TRUE(NetworkInfo::AddLcoreSwitch("DSwitch-Prod", 0));
  EXPECT_TRUE(NetworkInfo::AddLcoreSwitch("vSwitch0", 4));
  EXPECT_FALSE(NetworkInfo::AddLcoreSwitch("DSwitch-Prod", 4));
  EXPECT_EQ(NetworkInfo::GetLcoreSwitch(4), "vSwitch0");
}

TEST(HostAreasJson, EnsAndMulticastJoinsRoundTrip) {
  HostModel host = OrvkCtl::Sim::DefaultHost();
  host.runtime.ens.lcores.push_back({9, "vSwitch1", 1});
  host.runtime.ens.max_lcores = 12;
  host.ip.interfaces[0].multicast_joins.push_back({"ff05::2", 3});
  HostModel copy = OrvkCtl::Sim::HostFromJson(OrvkCtl::Sim::HostToJson(host));
  EXPECT_EQ(copy.runtime.ens, host.runtime.ens);
  EXPECT_EQ(copy.ip.interfaces, host.ip.interfaces);
  EXPECT_EQ(copy.nic.pnics, host.nic.pnics);
}

}  // namespace
