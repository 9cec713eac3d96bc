// Neighbor tables of the simulated host, kept with the routing state of each
// netstack instance. Entries do not age: their expiry is what the host
// reported when the state was made.
#include <algorithm>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/routing.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv4Neighbor;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Neighbor;
using Sim::CheckFault;
using Sim::Operation;
using Sim::NeighborState;
using Sim::NetstackRoutes;

NetstackRoutes const& ReadTables(std::string const& key) {
  auto const* routes = Sim::FindNetstackRoutes(Sim::ReadHost(Sim::kAreaIp).ip, key);
  if (!routes) throw HostCtlException("Netstack instance " + key + " does not exist");
  return *routes;
}

std::string TypeWord(uint32_t flags) {
  return (flags & Sim::kNeighborFlagStatic) ? "Static" : "Dynamic";
}

// Removes the entries for `address` on `interfaceName` (all interfaces when
// empty) from the chosen table of instance `key`.
void RemoveNeighbor(std::string const& key, bool ipv6, std::string const& address,
                    std::string const& interfaceName) {
  Sim::ChangeHost(Sim::kAreaIp, [&](Sim::HostModel& host) {
    auto* routes = Sim::FindNetstackRoutes(host.ip, key);
    if (!routes) throw HostCtlException("Netstack instance " + key + " does not exist");
    auto& table = ipv6 ? routes->ipv6_neighbors : routes->ipv4_neighbors;
    auto removed = std::erase_if(table, [&](NeighborState const& entry) {
      return entry.address == address &&
             (interfaceName.empty() || entry.interface == interfaceName);
    });
    if (removed == 0) {
      throw HostCtlException("No neighbor entry for " + address +
                             (interfaceName.empty() ? "" : " on " + interfaceName));
    }
  });
}

}  // namespace

void RoutingInfoImpl::GetCurrentIpv4OrvikNeighbors(std::vector<Ipv4Neighbor>& out,
                                                   std::string const& interfaceName) {
  CheckFault(Operation::RoutingInfoImpl_GetCurrentIpv4OrvikNeighbors);
  for (auto const& entry : ReadTables(key_).ipv4_neighbors) {
    if (!interfaceName.empty() && entry.interface != interfaceName) continue;
    Ipv4Neighbor neighbor;
    neighbor.address = Ipv4Address(entry.address);
    neighbor.macAddress = entry.mac;
    neighbor.interfaceName = entry.interface;
    neighbor.expiry = static_cast<int32_t>(entry.expiry);
    neighbor.flags = entry.flags;
    out.push_back(neighbor);
  }
}

void RoutingInfoImpl::GetCurrentIpv6OrvikNeighbors(std::vector<Ipv6Neighbor>& out,
                                                   std::string const& interfaceName) {
  CheckFault(Operation::RoutingInfoImpl_GetCurrentIpv6OrvikNeighbors);
  for (auto const& entry : ReadTables(key_).ipv6_neighbors) {
    if (!interfaceName.empty() && entry.interface != interfaceName) continue;
    Ipv6Neighbor neighbor;
    neighbor.address = Ipv6Address(entry.address);
    neighbor.macAddress = entry.mac;
    neighbor.interfaceName = entry.interface;
    neighbor.expiry = static_cast<uint32_t>(entry.expiry);
    neighbor.state = entry.state;
    neighbor.flags = entry.flags;
    out.push_back(neighbor);
  }
}

std::string RoutingInfoImpl::GetIpv4NeighborType(Ipv4Neighbor neighbor) {
  CheckFault(Operation::RoutingInfoImpl_GetIpv4NeighborType);
  return TypeWord(neighbor.flags);
}

std::string RoutingInfoImpl::GetIpv6NeighborType(Ipv6Neighbor neighbor) {
  CheckFault(Operation::RoutingInfoImpl_GetIpv6NeighborType);
  return TypeWord(neighbor.flags);
}

std::string RoutingInfoImpl::GetIpv6NeighborState(Ipv6Neighbor neighbor) {
  CheckFault(Operation::RoutingInfoImpl_GetIpv6NeighborState);
  static char const* const kStates[] = {"Incomplete", "Reachable", "Stale", "Delay", "Probe"};
  return neighbor.state < std::size(kStates) ? kStates[neighbor.state] : "Unknown";
}

void RoutingInfoImpl::RemoveIpv4Neighbor(Ipv4Neighbor neighbor) {
  CheckFault(Operation::RoutingInfoImpl_RemoveIpv4Neighbor);
  RemoveNeighbor(key_, false, neighbor.address.GetStringAddress(), neighbor.interfaceName);
}

void RoutingInfoImpl::RemoveIpv6Neighbor(Ipv6Neighbor neighbor) {
  CheckFault(Operation::RoutingInfoImpl_RemoveIpv6Neighbor);
  RemoveNeighbor(key_, true, neighbor.address.GetStringAddress(), neighbor.interfaceName);
}

}  // namespace OrvkCtl::Network
