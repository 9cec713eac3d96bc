#include "host_rules.h"

#include <algorithm>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/network_types.h"
#include "vswitch_policy.h"

namespace OrvkCtl::Sim {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv4Network;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;

constexpr int kPortGroupConnection = 1;
// What an ENS context names while bound to no switch.
constexpr std::string_view kNoSwitch = "null";

// The addresses an interface's sockets may be bound to, without prefixes.
std::vector<std::string> AddressesOf(InterfaceState const& nic) {
  std::vector<std::string> addresses;
  if (nic.ip.ipv4_address != "0.0.0.0") addresses.push_back(nic.ip.ipv4_address);
  for (auto const& address : nic.ip.ipv6_addresses) {
    addresses.push_back(address.address.substr(0, address.address.find('/')));
  }
  return addresses;
}

}  // namespace

void RemoveInterface(HostModel& host, std::string const& name) {
  auto& all = host.ip.interfaces;
  auto it = std::find_if(all.begin(), all.end(),
                         [&](InterfaceState const& nic) { return nic.name == name; });
  if (it == all.end()) throw HostCtlException("Orvik network interface " + name + " not found");
  InterfaceState const& nic = *it;
  if (auto* routes = FindNetstackRoutes(host.ip, nic.netstack)) {
    auto through = [&](auto const& row) { return row.interface == nic.name; };
    std::erase_if(routes->ipv4, through);
    std::erase_if(routes->ipv6, through);
    std::erase_if(routes->ipv4_neighbors, through);
    std::erase_if(routes->ipv6_neighbors, through);
  }
  auto const addresses = AddressesOf(nic);
  std::erase_if(host.ip.connections, [&](ConnectionState const& socket) {
    return socket.netstack == nic.netstack &&
           std::ranges::find(addresses, socket.local_address) != addresses.end();
  });
  if (nic.connection_type == kPortGroupConnection) {
    if (auto* group = FindPortGroup(host.vswitch, nic.portgroup)) {
      group->active_clients = std::max(0, group->active_clients - 1);
    }
  }
  std::erase_if(host.runtime.ports, [&](PortState const& port) {
    return port.type == kPortTypeInterface && port.client == nic.name;
  });
  all.erase(it);
}

void RemoveStandardSwitch(HostModel& host, std::string const& name) {
  auto& switches = host.vswitch.standard_switches;
  auto it = std::find_if(switches.begin(), switches.end(),
                         [&](StandardSwitchState const& vswitch) { return vswitch.name == name; });
  if (it == switches.end()) throw HostCtlException("Virtual switch " + name + " not found");
  for (auto const& group : it->port_groups) {
    if (group.active_clients > 0) {
      throw HostCtlException("Unable to remove virtual switch " + name + ": port group " +
                             group.name + " is in use");
    }
  }
  switches.erase(it);
  for (auto& lcore : host.runtime.ens.lcores) {
    if (lcore.switch_name == name) lcore.switch_name = kNoSwitch;
  }
}

namespace {

// Whether traffic may leave through uplink `name`.
bool InService(HostModel const& host, std::string const& name) {
  auto const* nic = FindPnic(host.nic, name);
  return !nic || LinkUp(*nic);
}

}  // namespace

std::string TeamUplink(HostModel const& host, PortState const& port) {
  if (auto const* vswitch = FindStandardSwitch(host.vswitch, port.portset)) {
    StandardSwitchState const* owner = nullptr;
    auto const* group = FindPortGroup(host.vswitch, port.portgroup, &owner);
    auto const teaming = group && owner == vswitch ? EffectiveTeaming(host, *vswitch, *group)
                                                   : EffectiveTeaming(host, *vswitch);
    auto const& order = teaming.uplinkOrder;
    auto const active = static_cast<size_t>(std::max(0, teaming.maxActiveUplinks));
    for (size_t i = 0; i < order.size(); ++i) {
      if (i < active && InService(host, order[i])) return order[i];
    }
    for (size_t i = active; i < order.size(); ++i) {
      if (InService(host, order[i])) return order[i];
    }
    return {};
  }
  if (auto const* dvs = FindDistributedSwitch(host.vswitch, port.portset)) {
    if (!port.team_uplink.empty()) return port.team_uplink;
    for (auto const& uplink : dvs->uplinks) {
      if (InService(host, uplink)) return uplink;
    }
  }
  return {};
}

void CheckBranch(HostModel const& host, std::string const& branch) {
  for (auto const& vswitch : host.vswitch.standard_switches) {
    if (std::ranges::find(vswitch.uplinks, branch) == vswitch.uplinks.end()) continue;
    auto const teaming = EffectiveTeaming(host, vswitch);
    auto const& order = teaming.uplinkOrder;
    auto const active = std::min(order.size(), static_cast<size_t>(std::max(0, teaming.maxActiveUplinks)));
    if (std::find(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(active), branch) !=
        order.begin() + static_cast<std::ptrdiff_t>(active)) {
      throw HostCtlException("Uplink " + branch + " is an active uplink of " + vswitch.name +
                             " and can't be attached as a branch");
    }
  }
}

std::string CanonicalAllowedIp(std::string const& text) {
  if (text.find('/') != std::string::npos) {
    if (Ipv4Network::IsValidAddressAndNetmask(text)) {
      Ipv4Network network(text);
      if (network.GetPrefixLength() == 32) return network.GetNetwork().GetStringAddress();
      return network.GetStringAddress();
    }
    if (Ipv6Network::IsValidAddressAndNetmask(text)) {
      Ipv6Network network(text);
      if (network.GetNetmask() == 128) return network.GetNetwork().GetStringAddress();
      return Ipv6Network(network.GetNetwork(), network.GetNetmask()).GetStringAddress();
    }
  } else {
    if (Ipv4Address::IsValidAddress(text)) return Ipv4Address(text).GetStringAddress();
    if (Ipv6Address::IsValidAddress(text)) return Ipv6Address(text).GetStringAddress();
  }
  throw HostCtlException("Invalid ip address or network: '" + text + "'");
}

uint64_t ActivatedHwCaps(PnicState const& nic) {
  // Bits of the capability words (PnicImpl::GetHwCapName) and their settings.
  struct Follows {
    unsigned bit;
    bool on;
  };
  Follows const settings[] = {
      {0, nic.offload.scatter_gather},     // SG
      {1, nic.offload.tx_checksum},        // IP_CSO
      {6, nic.offload.tcp_segmentation},   // TSO
      {7, nic.offload.tx_checksum},        // IP6_CSO
      {8, nic.offload.tcp_segmentation},   // TSO6
      {17, nic.offload.large_receive},     // LRO
      {18, nic.dcb.supported && nic.dcb.enabled},  // DCB
      {23, nic.sriov.enabled},             // SRIOV
  };
  uint64_t activated = nic.hw_cap.activated;
  for (auto const& [bit, on] : settings) {
    uint64_t const mask = uint64_t{1} << bit;
    activated = on ? activated | (nic.hw_cap.supported & mask) : activated & ~mask;
  }
  return activated;
}

void CheckDnsServer(std::string const& address) {
  if (address == "0.0.0.0" || address == "::" || address == "255.255.255.255") {
    throw HostCtlException("DNS server " + address + " is not an address a server can have");
  }
}

}  // namespace OrvkCtl::Sim
