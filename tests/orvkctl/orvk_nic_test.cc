// The simulated library's Orvik interfaces: caching, what the host refuses,
// and what a change does to the rest of the host.
#include "hostctl/orvk_nic.h"

#include <gtest/gtest.h>

#include <string>

#include "host_store.h"
#include "hostctl/network_types.h"
#include "hostctl/port_group_impl.h"
#include "hostctl/util.h"
#include "support/harness.h"

namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::MacAddress;
using OrvkCtl::Network::OrvikNicInfoImpl;
using OrvkCtl::Network::OrvkNicImpl;
using OrvkCtl::Network::PortGroupImpl;
using TestSupport::HostTest;

class OrvkNicTest : public HostTest {
 protected:
  // The text of the HostCtlException `action` throws.
  template <class F>
  std::string Refusal(F action) {
    try {
      action();
    } catch (HostCtlException const& e) {
      return e.message;
    }
    return "(not refused)";
  }
};

TEST_F(OrvkNicTest, CachedAccessorsReadOnce) {
  OrvkNicImpl nic("orvk0");
  EXPECT_EQ(nic.GetMtu(), 1500u);
  OrvkCtl::Sim::ChangeHost([](OrvkCtl::Sim::HostModel& host) { host.ip.interfaces[0].mtu = 9000; });
  InjectFault("OrvkNicImpl::Refresh", "must not refresh");
  EXPECT_EQ(nic.GetMtu(), 1500u);
  ClearFaults();
  EXPECT_EQ(OrvkNicImpl("orvk0").GetMtu(), 9000u);
  EXPECT_EQ(Refusal([] { OrvkNicImpl("orvk9").GetMtu(); }),
            "Orvik network interface orvk9 not found");
}

TEST_F(OrvkNicTest, AddRefusesWhatTheHostCannotHold) {
  OrvikNicInfoImpl info;
  PortGroupImpl vmNetwork("VM Network");
  struct Case {
    std::string key;
    std::string mac;
    uint32_t mtu;
    std::string name;
    std::string message;
  };
  std::vector<Case> const cases = {
      {"nope", "", 0, "", "Netstack instance nope does not exist"},
      {"defaultTcpipStack", "01:00:5e:00:00:01", 0, "",
       "Invalid MAC address 01:00:5e:00:00:01: it is a multicast address"},
      {"defaultTcpipStack", "d2:6e:a0:00:10:00", 0, "",
       "MAC address d2:6e:a0:00:10:00 is already in use by orvk0"},
      {"defaultTcpipStack", "", 9001, "",
       "Invalid MTU 9001 for orvk1: it must be between 1280 "
       "and 9000"},
      {"defaultTcpipStack", "", 0, "orvk256",
       "Invalid interface name orvk256: it must be orvk0 "
       "to orvk255"},
  };
  std::string const before = StateFileText();
  for (auto const& c : cases) {
    SCOPED_TRACE(c.message);
    MacAddress mac = c.mac.empty() ? MacAddress() : MacAddress(c.mac);
    EXPECT_EQ(Refusal([&] {
                info.AddOrvikNic(&vmNetwork, c.key, IpConfig(), mac, 0, c.mtu, 0, c.name, false);
              }),
              c.message);
  }
  EXPECT_EQ(Refusal([&] {
              info.AddOrvikNic(nullptr, "defaultTcpipStack", IpConfig(), MacAddress(), 0, 0, 0, "",
                               false);
            }),
            "No connection point given for the Orvik network interface");
  EXPECT_TRUE(StateFileText() == before);
}

TEST_F(OrvkNicTest, SetIpConfigChecksAddressesAndFollowsRoutes) {
  OrvkNicImpl nic("orvk0");
  IpConfig config = nic.GetIpConfig();
  config.SetIpv4Gateway(Ipv4Address("10.0.0.1"));
  EXPECT_EQ(Refusal([&] { nic.SetIpConfig(config); }),
            "Gateway 10.0.0.1 is not in the network of orvk0 (192.168.10.21/255.255.255.0)");
  config.SetIpv4Address(Ipv4Address("10.1.2.3"));
  config.SetIpv4Netmask(Ipv4Address("255.255.0.0"));
  config.SetIpv4Gateway(Ipv4Address());
  nic.SetIpConfig(config);
  auto const& routes = OrvkCtl::Sim::ReadHost().ip.routes[0].ipv4;
  ASSERT_EQ(routes.size(), 3u);
  EXPECT_EQ(routes[1].network, "10.1.0.0/16");
  EXPECT_EQ(routes[1].gateway, "0.0.0.0");
  // The object reads the change back.
  EXPECT_EQ(nic.GetIpConfig().GetIpv4Address(), Ipv4Address("10.1.2.3"));
}

TEST_F(OrvkNicTest, TagsAreSetOnceAndRemovedOnlyWhenSet) {
  OrvkNicImpl nic("orvk0");
  auto const tag = static_cast<HostCtl::Network::OrvkNicTagType>(4);
  nic.AddTag(tag, false);
  nic.AddTag(tag, false);
  std::vector<HostCtl::Network::OrvkNicTagType> tags;
  nic.GetTags(tags);
  EXPECT_EQ(tags.size(), 2u);
  EXPECT_EQ(OrvikNicInfoImpl().GetOrvikNicsByTag(tag).size(), 1u);
  nic.RemoveTag(tag);
  EXPECT_EQ(Refusal([&] { nic.RemoveTag(tag); }), "Tag 4 is not set on orvk0");
  EXPECT_EQ(Refusal([&] { nic.AddTag(HostCtl::Network::NoTag, false); }), "Invalid tag 14");
}

TEST_F(OrvkNicTest, ExecRecordsTheLineOrFailsWithAStatus) {
  EXPECT_EQ(OrvkCtl::Util::OrvkCtl_Exec("/bin/true", false, true, false), 0);
  InjectFault("OrvkCtl_Exec", "exit 1");
  EXPECT_EQ(OrvkCtl::Util::OrvkCtl_Exec("/bin/false", false, true, false), 1);
  EXPECT_EQ(OrvkCtl::Sim::ReadHost().ip.executed_commands, std::vector<std::string>{"/bin/true"});
}

}  // namespace
