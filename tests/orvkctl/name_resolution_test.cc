// The simulated library's DNS configuration and hosts file: what stays in the
// service object until saved, how texts are kept, and what goes with a
// netstack instance.
#include "hostctl/dns.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_store.h"
#include "hostctl/network_info.h"
#include "hostctl/network_types.h"
#include "support/harness.h"

namespace {

using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;
using OrvkCtl::Network::DnsConfigImpl;
using OrvkCtl::Network::HostsFile;
using TestSupport::HostTest;

using Texts = std::vector<std::string>;

class NameResolutionTest : public HostTest {};

TEST_F(NameResolutionTest, DnsChangesStayInTheObjectUntilSaved) {
  DnsConfigImpl changed("defaultTcpipStack");
  changed.AddUserNameServer(Ipv6Address("2001:DB8:0::53"));
  changed.RemoveSearchDomain("EXAMPLE.com");
  EXPECT_EQ(changed.GetNameServers(), (Texts{"192.168.10.2", "192.168.10.3", "2001:db8::53"}));
  EXPECT_EQ(DnsConfigImpl("defaultTcpipStack").GetNameServers(),
            (Texts{"192.168.10.2", "192.168.10.3"}));
  changed.SaveConfig();
  Reload();
  DnsConfigImpl reread("defaultTcpipStack");
  EXPECT_EQ(reread.GetNameServers(), (Texts{"192.168.10.2", "192.168.10.3", "2001:db8::53"}));
  EXPECT_EQ(reread.GetSearchDomainsString(), "corp.example.com");
}

TEST_F(NameResolutionTest, RemovedNetstackTakesItsDnsAndSocketsAlong) {
  DnsConfigImpl livehop("livehop");
  livehop.AddUserNameServer(Ipv4Address("10.50.0.53"));
  livehop.SaveConfig();
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  std::vector<HostCtl::Network::TcpIpConnection> sockets;
  networkInfo.GetCurrentTcpOrvikConnections(sockets, "livehop");
  EXPECT_EQ(sockets.size(), 1u);
  networkInfo.RemoveNetstackInstance("livehop", false);
  for (auto const& config : OrvkCtl::Sim::ReadHost().ip.dns) EXPECT_NE(config.netstack, "livehop");
  for (auto const& socket : OrvkCtl::Sim::ReadHost().ip.connections) {
    EXPECT_NE(socket.netstack, "livehop");
  }
  EXPECT_THROW(DnsConfigImpl("livehop").GetNameServers(), HostCtl::Lib::HostCtlException);
}

TEST_F(NameResolutionTest, HostsLinesKeepCanonicalAddresses) {
  HostsFile hosts;
  hosts.AddEntryFromUser("2001:DB8::0007", "nas02.", {}, "");
  auto entries = hosts.GetEntriesFromConfig();
  ASSERT_EQ(entries.size(), 4u);
  EXPECT_EQ(entries.back()->GetIpAddress(), "2001:db8::7");
  EXPECT_THROW(hosts.AddEntryFromUser("2001:db8::7", "NAS02.", {}, ""),
               HostCtl::Lib::HostCtlException);
  EXPECT_THROW(hosts.AddEntryFromUser("10.0.0.1", "a", {}, "two\nlines"),
               HostCtl::Lib::HostCtlException);
  hosts.RemoveEntryFromUser("2001:db8:0:0::7", "nas02.");
  EXPECT_EQ(hosts.GetEntriesFromConfig().size(), 3u);
}

}  // namespace
