// The default host's IP stack: the management interface orvk0 holds
// 192.168.10.21/24 and 2001:db8:10::21/64 on the default netstack instance,
// with a default gateway for each family and a static route to the backup
// network behind 192.168.10.254.
#include "host_model.h"

namespace OrvkCtl::Sim {

void SeedIp(HostModel& host) {
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
  host.ip.routes = {routes};
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

}  // namespace OrvkCtl::Sim
