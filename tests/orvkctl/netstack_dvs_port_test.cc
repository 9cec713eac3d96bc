// Netstack instances, distributed switches and switch ports of the simulated
// host: caching, configured versus in-force settings, and bookkeeping.
#include <gtest/gtest.h>

#include "host_store.h"
#include "hostctl/dvswitch.h"
#include "hostctl/netstack.h"
#include "hostctl/network_info.h"
#include "hostctl/port.h"
#include "hostctl/virtual_switch.h"
#include "support/harness.h"

namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::NetstackInstance;
using OrvkCtl::Network::DVPortImpl;
using OrvkCtl::Network::NetstackInstanceImpl;
using OrvkCtl::Network::NetworkInfoImpl;
using OrvkCtl::Network::VirtualSwitchInfoImpl;

class HostObjectsTest : public TestSupport::HostTest {};

TEST_F(HostObjectsTest, CachedNetstackAccessorsReadOnceUntilMarkedStale) {
  NetstackInstanceImpl livehop("livehop");
  EXPECT_EQ(livehop.GetState(), NetstackInstance::STATE_UP);
  NetstackInstanceImpl("livehop").Disable();
  EXPECT_EQ(livehop.GetState(), NetstackInstance::STATE_UP);  // cached
  livehop.MarkStale();
  EXPECT_EQ(livehop.GetState(), 0u);
  EXPECT_EQ(livehop.GetCurrentMaxConnections(), 0u);
  EXPECT_EQ(livehop.GetMaxConnections(), 5000u);  // the configuration stays
}

TEST_F(HostObjectsTest, ConfigOnlyInstanceComesUpWithItsConfiguredSettings) {
  NetworkInfoImpl info;
  NetstackInstanceImpl fresh("lab", 30000, "cubic", false, 7, "disabled");
  EXPECT_EQ(fresh.GetMaxConnections(), 30000u);  // not on the host yet
  info.AddNetstackInstance(&fresh, true);
  EXPECT_EQ(info.GetNetstackInstanceState("lab"), 0u);
  auto lab = info.LookupNetstackInstanceByKey("lab");
  ASSERT_NE(lab, nullptr);
  lab->Enable();
  NetstackInstanceImpl up("lab");
  EXPECT_EQ(up.GetState(), NetstackInstance::STATE_UP);
  EXPECT_EQ(up.GetCurrentMaxConnections(), 30000u);
  EXPECT_FALSE(up.GetCurrentIpv6Enabled());
  EXPECT_EQ(up.GetEcnStatus(), "disabled");
  EXPECT_EQ(up.GetFlags(), 7u);

  // Kernel only: the configuration stays; then the whole instance goes.
  info.RemoveNetstackInstance("lab", true);
  EXPECT_EQ(info.GetNetstackInstanceState("lab"), 0u);
  EXPECT_NE(info.LookupNetstackInstanceByKey("lab"), nullptr);
  info.RemoveNetstackInstance("lab", false);
  EXPECT_EQ(info.LookupNetstackInstanceByKey("lab"), nullptr);
  EXPECT_EQ(OrvkCtl::Sim::FindNetstackRoutes(OrvkCtl::Sim::ReadHost().ip, "lab"), nullptr);
  EXPECT_THROW(up.GetCongestionControlAlgorithm(), HostCtlException);
}

TEST_F(HostObjectsTest, NewInstanceSettingsAreChecked) {
  NetworkInfoImpl info;
  struct Case {
    NetstackInstanceImpl instance;
    char const* message;
  };
  Case cases[] = {
      {{"", 11000, "newreno", true, 2, "enabled"}, "Netstack instance key cannot be empty"},
      {{"x", 10, "newreno", true, 2, "enabled"},
       "Invalid maximum number of connections 10: it must be between 1000 and 1000000"},
      {{"x", 11000, "vegas", true, 2, "enabled"}, "Unsupported congestion control algorithm vegas"},
      {{"x", 11000, "newreno", true, 2, "on"},
       "Invalid ECN status on: it must be disabled, enabled or echo-only"},
  };
  OrvkCtl::Sim::ReadHost();  // seeds the state file
  std::string before = StateFileText();
  for (auto& c : cases) {
    SCOPED_TRACE(c.message);
    try {
      info.AddNetstackInstance(&c.instance, false);
      ADD_FAILURE() << "accepted";
    } catch (HostCtlException const& e) {
      EXPECT_EQ(e.message, c.message);
    }
  }
  EXPECT_EQ(StateFileText(), before);
}

TEST_F(HostObjectsTest, DVPortsAreConnectionPointsWithPersistentConnectionIds) {
  auto dvs = HostCtl::Network::NetworkFactory::GetDVSwitchByName("DSwitch-Prod");
  std::string id = dvs->GetDvsId();
  DVPortImpl port(HostCtl::Network::DVPortParam{id, "5", 0});
  EXPECT_TRUE(port.IsValid());
  EXPECT_EQ(port.GetPortsetName(), "DSwitch-Prod");
  port.SetConnectionId(77);
  Reload();
  EXPECT_EQ(DVPortImpl("5", id).GetConnectionId(), 77u);
  EXPECT_FALSE(DVPortImpl("99", id).IsValid());
  std::vector<std::string> clients;
  EXPECT_THROW(DVPortImpl("99", id).IsInUse(clients), HostCtlException);
  EXPECT_THROW(HostCtl::Network::NetworkFactory::GetDVSwitchByName("nope"), HostCtlException);
  EXPECT_EQ(VirtualSwitchInfoImpl().GetDVSwitchByName("nope"), nullptr);
}

TEST_F(HostObjectsTest, AllSwitchesHoldEveryPortOnce) {
  std::vector<std::string> names;
  size_t ports = 0;
  for (auto const& portset : VirtualSwitchInfoImpl().GetAllSwitches()) {
    names.push_back(portset->GetName());
    ports += portset->GetPorts().size();
  }
  EXPECT_EQ(names, (std::vector<std::string>{"vSwitch0", "vSwitch1", "DSwitch-Prod"}));
  EXPECT_EQ(ports, OrvkCtl::Sim::ReadHost().runtime.ports.size());
  EXPECT_THROW(OrvkCtl::Network::PortImpl(4).GetType(), HostCtlException);
}

}  // namespace
