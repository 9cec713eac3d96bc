// Routes and default gateways of one netstack instance.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"

namespace HostCtl::Network {

// One IPv4 route in force. A gateway of 0.0.0.0 marks a network on the link
// of the interface itself.
struct Ipv4RouteRecord {
  Ipv4Network network;
  Ipv4Address gateway;
  std::string interfaceName;
};

// One IPv6 route in force. A gateway of "::" marks a network on the link of
// the interface itself.
struct Ipv6RouteRecord {
  Ipv6Network network;
  Ipv6Address gateway;
  std::string interfaceName;
};

// One entry of the IPv4 neighbor (ARP) table. `expiry` is the seconds left
// before the entry must be confirmed again; `flags` is the host's own word.
struct Ipv4Neighbor {
  Ipv4Address address;
  std::string macAddress;
  std::string interfaceName;
  int32_t expiry = 0;
  uint32_t flags = 0;
};

// One entry of the IPv6 neighbor table; `state` and `flags` are the host's
// own words.
struct Ipv6Neighbor {
  Ipv6Address address;
  std::string macAddress;
  std::string interfaceName;
  uint32_t expiry = 0;
  uint32_t state = 0;
  uint32_t flags = 0;
};

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

// The routing table of one netstack instance, by key. Making the object reads
// nothing; every operation reads or changes the host at once.
//
// Every operation throws HostCtl::Lib::HostCtlException when the host fails
// or the netstack instance does not exist ("Netstack instance <key> does not
// exist"). Networks are taken by their network part: 10.50.1.7/16 names the
// route to 10.50.0.0/16. The default route of a family is its route to
// DEFAULT_IPV4_ROUTE or DEFAULT_IPV6_ROUTE; its gateway is the default gateway
// in force.
class RoutingInfoImpl : public virtual Lib::OrvkCtlObject {
 public:
  // 0.0.0.0/0 and ::/0.
  static const HostCtl::Network::Ipv4Network DEFAULT_IPV4_ROUTE;
  static const HostCtl::Network::Ipv6Network DEFAULT_IPV6_ROUTE;

  explicit RoutingInfoImpl(std::string const& netstackKey);
  ~RoutingInfoImpl() override;
  void Refresh() override;

  std::string const& GetNetstackInstanceKey() const { return key_; }
  // Makes later calls act on the instance `key`. Throws if it does not exist.
  void SetNetstackInstanceKey(std::string const& key);

  // Adds a route through `gateway`, which must lie in a network on the link
  // of one of the instance's interfaces; the route leaves through that
  // interface. Adding the default route also makes `gateway` the configured
  // default gateway. Throws for an unspecified or unreachable gateway, and
  // when the instance already has a route to that network.
  void AddOrvikRoute(HostCtl::Network::Ipv4Network const& network,
                     HostCtl::Network::Ipv4Address const& gateway);
  // Removes the route to `network` through `gateway`. Throws when there is no
  // such route, and for a network on an interface's own link, which goes
  // only with the interface's address.
  void RemoveOrvikRoute(HostCtl::Network::Ipv4Network const& network,
                        HostCtl::Network::Ipv4Address const& gateway);
  void AddIpv6OrvikRoute(HostCtl::Network::Ipv6Network const& network,
                         HostCtl::Network::Ipv6Address const& gateway);
  void RemoveIpv6OrvikRoute(HostCtl::Network::Ipv6Network const& network,
                            HostCtl::Network::Ipv6Address const& gateway);

  // The routes in force, the default route first.
  std::vector<HostCtl::Network::Ipv4RouteRecord> GetCurrentOrvikRoutes();
  std::vector<HostCtl::Network::Ipv6RouteRecord> GetCurrentIpv6OrvikRoutes();
  // How the IPv4 route to `network` came to be: "MANUAL" or "DHCP"; "N/A"
  // when there is no such route.
  std::string GetDefaultGatewaySource(HostCtl::Network::Ipv4Network const& network);

  // The default gateway in force; 0.0.0.0 when there is none.
  HostCtl::Network::Ipv4Address GetOrvikDefaultGateway();
  // The configured default gateway; 0.0.0.0 when there is none.
  HostCtl::Network::Ipv4Address GetOrvikConfigDefaultGateway();
  // Sets the default gateway in force, and unless `runtimeOnly` the
  // configured one too. 0.0.0.0 removes the default route. Throws for a
  // gateway that no interface of the instance reaches.
  void SetOrvikDefaultGateway(HostCtl::Network::Ipv4Address const& gateway, bool runtimeOnly);
  HostCtl::Network::Ipv6Address GetIpv6OrvikDefaultGateway();
  HostCtl::Network::Ipv6Address GetIpv6OrvikConfigDefaultGateway();
  // Sets the IPv6 default gateway in force and the configured one; "::"
  // removes the default route.
  void SetIpv6OrvikDefaultGateway(HostCtl::Network::Ipv6Address const& gateway);

  // Appends the neighbor entries on interface `interfaceName` to `out`; an
  // empty name means all interfaces of the instance.
  void GetCurrentIpv4OrvikNeighbors(std::vector<HostCtl::Network::Ipv4Neighbor>& out,
                                    std::string const& interfaceName);
  void GetCurrentIpv6OrvikNeighbors(std::vector<HostCtl::Network::Ipv6Neighbor>& out,
                                    std::string const& interfaceName);
  // "Static" for an entry made by hand, "Dynamic" for a learnt one.
  std::string GetIpv4NeighborType(HostCtl::Network::Ipv4Neighbor neighbor);
  std::string GetIpv6NeighborType(HostCtl::Network::Ipv6Neighbor neighbor);
  // "Incomplete", "Reachable", "Stale", "Delay", "Probe", else "Unknown".
  std::string GetIpv6NeighborState(HostCtl::Network::Ipv6Neighbor neighbor);
  // Removes the entries for the neighbor's address on its interface, or on
  // all interfaces when its interface name is empty. Throws when there is no
  // such entry.
  void RemoveIpv4Neighbor(HostCtl::Network::Ipv4Neighbor neighbor);
  void RemoveIpv6Neighbor(HostCtl::Network::Ipv6Neighbor neighbor);

 private:
  std::string key_;
};

}  // namespace OrvkCtl::Network
