// The host's own IP stack: netstack instances, interfaces, routes, DNS, hosts file, IPsec: records
// of the simulated host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace OrvkCtl::Sim {

// One row of a routing table. Texts are canonical: networks with their host
// bits clear ("10.50.0.0/16", "2001:db8:10::/64"), addresses as the value
// types print them.
struct RouteState {
  std::string network;
  // "0.0.0.0" or "::" for a network on the link of `interface` itself.
  std::string gateway;
  // The Orvik interface the route leaves through.
  std::string interface;
  // How the route came to be: "MANUAL" or "DHCP".
  std::string source;

  bool operator==(RouteState const&) const = default;
};

// The routing state of one netstack instance. The row whose network is
// 0.0.0.0/0 (::/0) is the default route; its gateway is the default gateway
// in force. The configured default gateways are what the instance starts
// with; "0.0.0.0" and "::" mean none.
struct NetstackRoutes {
  std::string netstack;
  std::vector<RouteState> ipv4;
  std::vector<RouteState> ipv6;
  std::string ipv4_config_gateway = "0.0.0.0";
  std::string ipv6_config_gateway = "::";

  bool operator==(NetstackRoutes const&) const = default;
};

struct IpArea {
  // One routing table per netstack instance, by key.
  std::vector<NetstackRoutes> routes;
};

// The routing state of the netstack instance with that key, or null.
NetstackRoutes* FindNetstackRoutes(IpArea& area, std::string const& netstack);
NetstackRoutes const* FindNetstackRoutes(IpArea const& area, std::string const& netstack);

}  // namespace OrvkCtl::Sim
