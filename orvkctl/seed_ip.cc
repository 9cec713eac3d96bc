// The default host's IP stack: the management interface orvk0 holds
// 192.168.10.21/24 and 2001:db8:10::21/64 on the default netstack instance,
// with a default gateway for each family and a static route to the backup
// network behind 192.168.10.254. Beside the default instance, the dedicated
// instance "livehop" is up, with no interface yet. orvk0 hangs on port group
// "Management Network" of vSwitch0. IPsec protects SSH to the management
// network: the manual SA sa-mgmt, the policy sp-mgmt that uses it, and one
// SA negotiated by key exchange for the way back. The default instance knows
// its neighbors on orvk0, resolves through two name servers and holds the
// open sockets of the management services; livehop listens for migrations.
#include <iterator>

#include "host_model.h"

namespace OrvkCtl::Sim {

namespace {

void SeedResolution(IpArea& ip) {
  ip.dns = {{"defaultTcpipStack", {"192.168.10.2", "192.168.10.3"},
             {"corp.example.com", "example.com"}}};
  ip.hosts = {
      {"192.168.10.40", "mgmt-center.corp.example.com", {"mgmt-center"}, "Management server"},
      {"192.168.10.60", "backup01.corp.example.com", {"backup01", "bkp"}, ""},
      {"2001:db8:10::99", "jump01.corp.example.com", {}, "IPv6 jump host"},
  };
}

void SeedNeighbors(NetstackRoutes& routes) {
  routes.ipv4_neighbors = {
      {"192.168.10.1", "00:1b:21:3a:4f:01", "orvk0", 1187, 0, 0},
      {"192.168.10.2", "52:54:00:0a:10:02", "orvk0", 904, 0, 0},
      {"192.168.10.3", "52:54:00:0a:10:03", "orvk0", 212, 0, 0},
      {"192.168.10.254", "00:1b:21:3a:4f:fe", "orvk0", 0, kNeighborFlagStatic, 0},
  };
  routes.ipv6_neighbors = {
      {"fe80::1", "00:1b:21:3a:4f:01", "orvk0", 26, 0, 1},
      {"2001:db8:10::2", "52:54:00:0a:10:02", "orvk0", 1143, 0, 2},
      {"fe80::5054:ff:fe0a:1003", "52:54:00:0a:10:03", "orvk0", 4, 0, 3},
  };
}

// World ids as in the runtime area's world table.
constexpr uint32_t kHostd = 2098733;
constexpr uint32_t kWebProxy = 2098901;
constexpr uint32_t kSshd = 2099215;
constexpr uint32_t kNtpd = 2099502;
constexpr uint32_t kDhcpClient = 2097688;
constexpr uint32_t kNetProbe = 2099877;
constexpr uint32_t kLivehop = 2100342;

void SeedConnections(IpArea& ip) {
  constexpr char kDefault[] = "defaultTcpipStack";
  ip.connections = {
      {kDefault, "tcp", 0, 0, "0.0.0.0", 22, "0.0.0.0", 0, 1, kSshd, "newreno"},
      {kDefault, "tcp", 0, 0, "::", 22, "::", 0, 1, kSshd, "newreno"},
      {kDefault, "tcp", 0, 0, "0.0.0.0", 443, "0.0.0.0", 0, 1, kWebProxy, "newreno"},
      {kDefault, "tcp", 0, 0, "::", 443, "::", 0, 1, kWebProxy, "newreno"},
      {kDefault, "tcp", 0, 0, "127.0.0.1", 8307, "0.0.0.0", 0, 1, kHostd, "newreno"},
      {kDefault, "tcp", 0, 36, "192.168.10.21", 22, "192.168.10.77", 52814, 4, kSshd, "newreno"},
      {kDefault, "tcp", 0, 0, "192.168.10.21", 443, "10.50.0.12", 61022, 4, kWebProxy,
       "newreno"},
      {kDefault, "tcp", 0, 0, "2001:db8:10::21", 443, "2001:db8:10::99", 50112, 4, kWebProxy,
       "newreno"},
      {kDefault, "tcp", 0, 0, "127.0.0.1", 41870, "127.0.0.1", 8307, 10, 0, "newreno"},
      {kDefault, "udp", 0, 0, "0.0.0.0", 123, "0.0.0.0", 0, 0, kNtpd, ""},
      {kDefault, "udp", 0, 0, "0.0.0.0", 68, "0.0.0.0", 0, 0, kDhcpClient, ""},
      {kDefault, "udp", 0, 0, "::", 546, "::", 0, 0, kDhcpClient, ""},
      {kDefault, "ip", 0, 0, "0.0.0.0", 0, "0.0.0.0", 0, 0, kNetProbe, ""},
      {"livehop", "tcp", 0, 0, "0.0.0.0", 8000, "0.0.0.0", 0, 1, kLivehop, "cubic"},
  };
}

}  // namespace

void SeedWorlds(RuntimeArea& runtime) {
  WorldState const services[] = {
      {kDhcpClient, "dhcp-client"}, {kHostd, "hostd"},         {kWebProxy, "web-proxy"},
      {kSshd, "sshd"},              {kNtpd, "ntpd"},           {kNetProbe, "net-probe"},
      {kLivehop, "livehop-mover"},
  };
  runtime.worlds.insert(runtime.worlds.end(), std::begin(services), std::end(services));
}

void SeedIp(HostModel& host) {
  InterfaceState orvk0;
  orvk0.name = "orvk0";
  orvk0.mac = "d2:6e:a0:00:10:00";
  orvk0.portset = "vSwitch0";
  orvk0.portgroup = "Management Network";
  orvk0.tags = {1};  // management
  orvk0.ip.ipv4_mode = "static";
  orvk0.ip.ipv4_address = "192.168.10.21";
  orvk0.ip.ipv4_netmask = "255.255.255.0";
  orvk0.ip.ipv4_gateway = "192.168.10.1";
  orvk0.ip.ipv6_enabled = true;
  orvk0.ip.ipv6_addresses = {{"fe80::d06e:a0ff:fe00:1000/64", 0, 0}, {"2001:db8:10::21/64", 0, 0}};
  orvk0.configured_ip = orvk0.ip;
  // The host's monitoring agent listens for its peers' announcements.
  orvk0.multicast_joins = {{"239.255.10.1", 1}};
  host.ip.interfaces = {orvk0};

  NetstackRoutes routes;
  routes.netstack = "defaultTcpipStack";
  routes.ipv4 = {
      {"0.0.0.0/0", "192.168.10.1", "orvk0", "MANUAL"},
      {"192.168.10.0/24", "0.0.0.0", "orvk0", "MANUAL"},
      {"10.50.0.0/16", "192.168.10.254", "orvk0", "MANUAL"},
  };
  routes.ipv4_config_gateway = "192.168.10.1";
  routes.ipv6 = {
      {"::/0", "fe80::1", "orvk0", "MANUAL"},
      {"fe80::/64", "::", "orvk0", "MANUAL"},
      {"2001:db8:10::/64", "::", "orvk0", "MANUAL"},
  };
  routes.ipv6_config_gateway = "fe80::1";
  SeedNeighbors(routes);
  NetstackRoutes livehopRoutes;
  livehopRoutes.netstack = "livehop";
  host.ip.routes = {routes, livehopRoutes};

  NetstackState defaultStack;
  defaultStack.key = "defaultTcpipStack";
  defaultStack.name = "defaultTcpipStack";
  defaultStack.state = kNetstackStateUp;
  defaultStack.max_connections = 11000;
  defaultStack.current_max_connections = 11000;
  defaultStack.cc_algorithm = "newreno";
  defaultStack.current_ipv6_enabled = true;
  defaultStack.flags = 2;
  NetstackState livehop = defaultStack;
  livehop.key = "livehop";
  livehop.name = "livehop";
  livehop.max_connections = livehop.current_max_connections = 5000;
  livehop.cc_algorithm = "cubic";
  host.ip.ipv6_enabled = true;
  host.ip.netstacks = {defaultStack, livehop};

  IpSecSaRecord manual;
  manual.name = "sa-mgmt";
  manual.spi = 0x1001;
  manual.source = "2001:db8:10::21";
  manual.destination = "2001:db8:10::1";
  manual.mode = 0;          // transport
  manual.encrypt_algo = 2;  // aes128-cbc
  manual.encrypt_key = "k3Yf0r-mgmt-aes!";
  manual.auth_algo = 1;  // hmac-sha2-256
  manual.auth_key = "0x6d676d742d686d61632d6b65792d3235362d6269742d76616c75652d303031";
  IpSecSaRecord negotiated;
  negotiated.name = "auto";
  negotiated.automatic = true;
  negotiated.lifetime = 3600;
  negotiated.spi = 0x2c0f;
  negotiated.source = "2001:db8:10::1";
  negotiated.destination = "2001:db8:10::21";
  negotiated.mode = 0;
  negotiated.encrypt_algo = 2;
  negotiated.encrypt_key = "0x8f1e2d3c4b5a69788796a5b4c3d2e1f0";
  negotiated.auth_algo = 0;  // hmac-sha1
  negotiated.auth_key = "0x0a1b2c3d4e5f60718293a4b5c6d7e8f901234567";
  host.ip.ipsec_sas = {manual, negotiated};

  IpSecSpRecord ssh;
  ssh.name = "sp-mgmt";
  ssh.source = "2001:db8:10::21";
  ssh.source_prefix = 128;
  ssh.destination = "2001:db8:10::";
  ssh.destination_prefix = 64;
  ssh.destination_port = 22;
  ssh.protocol = 1;   // tcp
  ssh.direction = 1;  // out
  ssh.action = 2;     // ipsec
  ssh.mode = 0;       // transport
  ssh.sa_name = "sa-mgmt";
  host.ip.ipsec_sps = {ssh};
  SeedResolution(host.ip);
  SeedConnections(host.ip);
  SeedWorlds(host.runtime);
}

NetstackState* FindNetstack(IpArea& area, std::string const& key) {
  for (auto& netstack : area.netstacks) {
    if (netstack.key == key) return &netstack;
  }
  return nullptr;
}

NetstackState const* FindNetstack(IpArea const& area, std::string const& key) {
  return FindNetstack(const_cast<IpArea&>(area), key);
}

NetstackRoutes* FindNetstackRoutes(IpArea& area, std::string const& netstack) {
  for (auto& routes : area.routes) {
    if (routes.netstack == netstack) return &routes;
  }
  return nullptr;
}

NetstackRoutes const* FindNetstackRoutes(IpArea const& area, std::string const& netstack) {
  return FindNetstackRoutes(const_cast<IpArea&>(area), netstack);
}

InterfaceState* FindInterface(IpArea& area, std::string const& name) {
  for (auto& nic : area.interfaces) {
    if (nic.name == name) return &nic;
  }
  return nullptr;
}

InterfaceState const* FindInterface(IpArea const& area, std::string const& name) {
  return FindInterface(const_cast<IpArea&>(area), name);
}

}  // namespace OrvkCtl::Sim
