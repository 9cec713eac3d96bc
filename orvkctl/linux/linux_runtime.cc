// What is live on the linux host's interfaces: the multicast groups each has
// joined, and the counters of its switch port. Both are read with the
// runtime area only.
#include <arpa/inet.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

#include "kernel.h"
#include "linux_host.h"
#include "linux_ip.h"

namespace OrvkCtl::Linux {

namespace {

using Sim::MulticastMembershipState;

std::string Mac(unsigned char const (&bytes)[6]) {
  char text[18];
  std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", bytes[0], bytes[1], bytes[2],
                bytes[3], bytes[4], bytes[5]);
  return text;
}

// The Ethernet address a group is received on.
std::string Ipv4GroupMac(in_addr group) {
  auto const* b = reinterpret_cast<unsigned char const*>(&group.s_addr);
  unsigned char const mac[6] = {0x01, 0x00, 0x5e, static_cast<unsigned char>(b[1] & 0x7f),
                                b[2], b[3]};
  return Mac(mac);
}
std::string Ipv6GroupMac(in6_addr const& group) {
  unsigned char const mac[6] = {
      0x33, 0x33, group.s6_addr[12], group.s6_addr[13], group.s6_addr[14], group.s6_addr[15]};
  return Mac(mac);
}

// The IPv4 memberships of the calling thread's namespace:
//   Idx  Device    : Count Querier   Group    Users Timer  Reporter
//   3    orvk1     :     1      V3
//                                    010000E0     1 0:00000000  0
// A device line, then its groups, each the address as the kernel stores it
// (network order) printed as one number.
void ReadIpv4(std::map<std::string, std::string> const& wanted,
              std::vector<MulticastMembershipState>& out) {
  std::ifstream file("/proc/thread-self/net/igmp");
  std::string line;
  std::getline(file, line);  // the heading
  std::string device;
  while (std::getline(file, line)) {
    std::istringstream words(line);
    if (!line.empty() && line[0] != '\t' && line[0] != ' ') {
      std::string index;
      words >> index >> device;
      continue;
    }
    std::string hex;
    int32_t users = 0;
    if (!(words >> hex >> users) || !wanted.count(device)) continue;
    in_addr group{};
    uint32_t const raw = static_cast<uint32_t>(std::strtoul(hex.c_str(), nullptr, 16));
    std::memcpy(&group.s_addr, &raw, sizeof raw);
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &group, text, sizeof text);
    out.push_back({device, text, Ipv4GroupMac(group), users});
  }
}

// The IPv6 memberships: "index device group(32 hex digits) users flags timer".
void ReadIpv6(std::map<std::string, std::string> const& wanted,
              std::vector<MulticastMembershipState>& out) {
  std::ifstream file("/proc/thread-self/net/igmp6");
  std::string line;
  while (std::getline(file, line)) {
    std::istringstream words(line);
    std::string index, device, hex;
    int32_t users = 0;
    if (!(words >> index >> device >> hex >> users) || hex.size() != 32 || !wanted.count(device)) {
      continue;
    }
    in6_addr group{};
    for (size_t i = 0; i < 16; ++i) {
      group.s6_addr[i] = static_cast<uint8_t>(std::stoul(hex.substr(2 * i, 2), nullptr, 16));
    }
    char text[INET6_ADDRSTRLEN] = {};
    inet_ntop(AF_INET6, &group, text, sizeof text);
    out.push_back({device, text, Ipv6GroupMac(group), users});
  }
}

}  // namespace

void ReadMemberships(HostModel& host) {
  // The interfaces of each namespace, each in its netstack's.
  std::map<std::string, std::map<std::string, std::string>> by_namespace;
  for (auto const& nic : host.ip.interfaces) {
    by_namespace[NamespaceOf(nic.netstack)][nic.name] = nic.netstack;
  }
  auto& memberships = host.runtime.memberships;
  memberships.clear();
  host.runtime.memberships_reported = true;
  std::vector<std::string> const named = NamedNamespaces();
  for (auto const& entry : by_namespace) {
    std::string const& netns = entry.first;
    auto const& wanted = entry.second;
    // An instance whose namespace went has nothing to report.
    if (!netns.empty() && !std::binary_search(named.begin(), named.end(), netns)) continue;
    InNamespace(netns, [&] {
      ReadIpv4(wanted, memberships);
      ReadIpv6(wanted, memberships);
    });
  }
}

void ReadPortCounters(HostModel& host, std::vector<LinkInfo> const& links) {
  for (auto& port : host.runtime.ports) {
    // The switch's side of the interface's veth pair is the port: what it
    // receives the interface sent. The kernel counts no broadcasts, and a
    // veth's multicasts only as its peer receives them.
    std::string const end_name = kOwnLinkPrefix + port.client;
    auto end = std::find_if(links.begin(), links.end(),
                            [&](LinkInfo const& link) { return link.name == end_name; });
    rtnl_link_stats64 const counters = end == links.end() ? rtnl_link_stats64{} : end->stats;
    port.packets_received = counters.rx_packets;
    port.packets_sent = counters.tx_packets;
    port.bytes_received = counters.rx_bytes;
    port.bytes_sent = counters.tx_bytes;
    port.rx_dropped = counters.rx_dropped;
    port.tx_dropped = counters.tx_dropped;
    port.multicast_received = counters.multicast;
    port.broadcast_received = port.broadcast_sent = 0;
    port.multicast_sent = 0;
  }
}

}  // namespace OrvkCtl::Linux
