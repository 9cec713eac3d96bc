// The default host's IP stack: the management interface orvk0 holds
// 192.168.10.21/24 and 2001:db8:10::21/64 on the default netstack instance,
// with a default gateway for each family and a static route to the backup
// network behind 192.168.10.254. Beside the default instance, the dedicated
// instance "livehop" is up, with no interface yet. orvk0 hangs on port group
// "Management Network" of vSwitch0. IPsec protects SSH to the management
// network: the manual SA sa-mgmt, the policy sp-mgmt that uses it, and one
// SA negotiated by key exchange for the way back.
#include "host_model.h"

namespace OrvkCtl::Sim {

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
