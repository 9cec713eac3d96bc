// Multicast groups of the host's Orvik network interfaces. An interface is in
// the all-hosts group of each address family it uses and in the
// solicited-node group of each of its IPv6 addresses; users of the interface
// join further groups, kept with the interface.
#include <arpa/inet.h>

#include <cstdio>
#include <string>
#include <vector>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/network_info.h"
#include "hostctl/orvk_nic.h"

namespace HostCtl::Network {
OrvikNicInfo::~OrvikNicInfo() = default;
}  // namespace HostCtl::Network

namespace OrvkCtl::Network {
namespace {

using HostCtl::Network::OrvkNic;

const std::string kAllHostsIpv4 = "224.0.0.1";
const std::string kAllNodesIpv6 = "ff02::1";

std::string Mac(unsigned a, unsigned b, unsigned c, unsigned d, unsigned e, unsigned f) {
  char text[18];
  std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", a, b, c, d, e, f);
  return text;
}

// The link-layer address of a group, or empty for a malformed group.
std::string GroupLinkLayer(std::string const& group) {
  in_addr v4{};
  if (inet_pton(AF_INET, group.c_str(), &v4) == 1) {
    auto const* b = reinterpret_cast<unsigned char const*>(&v4.s_addr);
    return Mac(0x01, 0x00, 0x5e, b[1] & 0x7f, b[2], b[3]);
  }
  in6_addr v6{};
  if (inet_pton(AF_INET6, group.c_str(), &v6) == 1) {
    auto const* b = v6.s6_addr;
    return Mac(0x33, 0x33, b[12], b[13], b[14], b[15]);
  }
  return "";
}

// The solicited-node group of "<address>/<prefix>", or empty.
std::string SolicitedNode(std::string const& address) {
  std::string bare = address.substr(0, address.find('/'));
  in6_addr v6{};
  if (inet_pton(AF_INET6, bare.c_str(), &v6) != 1) return "";
  in6_addr group{};
  inet_pton(AF_INET6, "ff02::1:ff00:0", &group);
  for (int i = 13; i < 16; ++i) group.s6_addr[i] = v6.s6_addr[i];
  char text[INET6_ADDRSTRLEN];
  inet_ntop(AF_INET6, &group, text, sizeof text);
  return text;
}

// Adds one user to `group`, joining it first if need be.
void Join(std::vector<OrvkNic::MulticastGroup>& groups, std::string const& interface,
          std::string const& group, int32_t users) {
  for (auto& joined : groups) {
    if (joined.group == group) {
      joined.refcount += users;
      return;
    }
  }
  groups.push_back({interface, group, GroupLinkLayer(group), users});
}

}  // namespace

void OrvkNicImpl::GetMulticastGroups(std::vector<MulticastGroup>& groups) {
  Sim::CheckFault(Sim::Operation::OrvkNicImpl_GetMulticastGroups);
  auto const& host = Sim::ReadHost(Sim::kAreaIp | Sim::kAreaRuntime);
  auto const* nic = Sim::FindInterface(host.ip, name_);
  if (!nic) {
    throw HostCtl::Lib::HostCtlException("Orvik network interface " + name_ + " not found");
  }
  if (host.runtime.memberships_reported) {
    for (auto const& joined : host.runtime.memberships) {
      if (joined.interface == name_) {
        groups.push_back({joined.interface, joined.group, joined.link_layer, joined.refcount});
      }
    }
    return;
  }
  std::vector<MulticastGroup> own;
  if (nic->enabled) {
    if (nic->ip.ipv4_mode != "none") Join(own, name_, kAllHostsIpv4, 1);
    if (nic->ip.ipv6_enabled) {
      Join(own, name_, kAllNodesIpv6, 1);
      for (auto const& address : nic->ip.ipv6_addresses) {
        std::string group = SolicitedNode(address.address);
        if (!group.empty()) Join(own, name_, group, 1);
      }
    }
    for (auto const& join : nic->multicast_joins) Join(own, name_, join.group, join.refcount);
  }
  groups.insert(groups.end(), own.begin(), own.end());
}

std::unique_ptr<HostCtl::Network::OrvikNicInfo> NetworkInfoImpl::GetOrvikNicInfo() {
  Sim::CheckFault(Sim::Operation::NetworkInfoImpl_GetOrvikNicInfo);
  return std::make_unique<OrvikNicInfoImpl>();
}

}  // namespace OrvkCtl::Network
