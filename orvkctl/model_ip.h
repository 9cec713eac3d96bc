// The host's own IP stack: netstack instances, interfaces, routes, DNS, hosts file, IPsec: records
// of the simulated host.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "lazy_list.h"

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

// One entry of a neighbor table (ARP for IPv4, neighbor discovery for IPv6).
// `expiry` is in seconds: the host reports IPv4 expiries as signed and IPv6
// expiries as unsigned 32-bit values, so it is kept wide enough for both.
// `flags` bit 0 marks an entry made by hand (static); `state` is the IPv6
// reachability state (0 incomplete, 1 reachable, 2 stale, 3 delay, 4 probe)
// and unused for IPv4.
struct NeighborState {
  std::string address;
  std::string mac;
  std::string interface;
  int64_t expiry = 0;
  uint32_t flags = 0;
  uint32_t state = 0;

  bool operator==(NeighborState const&) const = default;
};

constexpr uint32_t kNeighborFlagStatic = 0x1;

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
  // The neighbor tables, by interface in the order entries were learnt.
  std::vector<NeighborState> ipv4_neighbors;
  std::vector<NeighborState> ipv6_neighbors;

  bool operator==(NetstackRoutes const&) const = default;
};

// One IPv6 address of an interface: "<address>/<prefix length>" with the
// address as configured, and the type and status numbers the host reports
// (type 0 static, 7 autoconf, 9 DHCP; status 0 preferred, 2 tentative, 3
// duplicated, 5 deprecated).
struct Ipv6AddressState {
  std::string address;
  uint32_t type = 0;
  uint32_t status = 0;

  bool operator==(Ipv6AddressState const&) const = default;
};

// The IP configuration of one interface. `ipv4_mode` is "static", "dhcp" or
// "none"; addresses are canonical texts, "0.0.0.0" and "::" for none.
struct IpConfigState {
  std::string ipv4_mode = "none";
  std::string ipv4_address = "0.0.0.0";
  std::string ipv4_netmask = "0.0.0.0";
  std::string ipv4_gateway = "0.0.0.0";
  bool dhcp_dns = false;
  bool ipv6_enabled = false;
  bool ipv6_dhcp = false;
  bool ipv6_router_adv = false;
  bool ipv6_dhcp_dns = false;
  std::string ipv6_gateway = "::";
  std::vector<Ipv6AddressState> ipv6_addresses;

  bool operator==(IpConfigState const&) const = default;
};

// A multicast group that users of an interface joined, beyond the groups its
// addresses imply.
struct MulticastJoinState {
  std::string group;
  int32_t refcount = 1;

  bool operator==(MulticastJoinState const&) const = default;
};

// One Orvik network interface. It hangs on a connection point: a port group
// of a standard switch (`connection_type` 1, `portgroup`), a port of a
// distributed switch (2: `dvs_uuid`, `dvport_id`, `connection_id`) or an
// opaque network (3: `opaque_network_id`, `opaque_network_type`,
// `external_id`). `portset` is the switch behind it: the standard switch's
// name, or the distributed switch's name. Its switch port is the port of the
// runtime area whose client is the interface.
struct InterfaceState {
  std::string name;
  std::string mac;
  std::string netstack = "defaultTcpipStack";
  uint32_t mtu = 1500;
  uint32_t num_rx_queue = 1;
  uint32_t tso_mss = 65535;
  bool enabled = true;
  int connection_type = 1;
  std::string portset;
  std::string portgroup;
  std::string dvs_uuid;
  std::string dvport_id;
  uint32_t connection_id = 0;
  std::string opaque_network_id;
  std::string opaque_network_type;
  std::string external_id;
  // Tag numbers, in the order they were set.
  std::vector<int> tags;
  // The configuration in force, and the one stored for the next boot.
  IpConfigState ip;
  IpConfigState configured_ip;
  std::vector<MulticastJoinState> multicast_joins;

  bool operator==(InterfaceState const&) const = default;
};

// The state word of a netstack instance that is up (created in the kernel);
// an instance that exists only in the configuration has state 0.
constexpr uint32_t kNetstackStateUp = 0x1234;

// One netstack instance. Some settings apply only when the instance is
// created in the kernel: for those the configured value and the value in
// force are kept apart.
struct NetstackState {
  std::string key;
  std::string name;
  uint32_t state = 0;
  uint32_t max_connections = 11000;
  uint32_t current_max_connections = 0;
  std::string cc_algorithm = "newreno";
  bool ipv6_enabled = true;
  bool current_ipv6_enabled = false;
  // "disabled", "enabled" or "echo-only".
  std::string ecn_status = "enabled";
  // Passed through from the creator; the host keeps it with the instance.
  uint32_t flags = 0;

  bool operator==(NetstackState const&) const = default;
};

// An IPsec Security Association. Enumerators as the library numbers them;
// addresses canonical. `automatic` marks an SA negotiated by key exchange.
struct IpSecSaRecord {
  std::string name;
  bool automatic = false;
  uint32_t state = 1;
  uint64_t lifetime = 0;
  uint32_t spi = 0;
  std::string source = "::";
  std::string destination = "::";
  uint32_t mode = 0;
  uint32_t encrypt_algo = 0;
  std::string encrypt_key;
  uint32_t auth_algo = 0;
  std::string auth_key;

  bool operator==(IpSecSaRecord const&) const = default;
};

// An IPsec Security Policy.
struct IpSecSpRecord {
  std::string name;
  std::string source = "::";
  uint32_t source_prefix = 0;
  uint32_t source_port = 0;
  std::string destination = "::";
  uint32_t destination_prefix = 0;
  uint32_t destination_port = 0;
  uint32_t protocol = 0;
  uint32_t direction = 1;
  uint32_t action = 2;
  uint32_t mode = 2;
  std::string sa_name;

  bool operator==(IpSecSpRecord const&) const = default;
};

// The DNS client configuration of one netstack instance: name servers as
// canonical address texts and search domains, each in the order of use.
struct DnsConfigState {
  std::string netstack;
  std::vector<std::string> servers;
  std::vector<std::string> search_domains;
};

// One line of the hosts file made by the user.
struct HostsEntryState {
  std::string ip;
  std::string hostname;
  std::vector<std::string> aliases;
  std::string comment;

  bool operator==(HostsEntryState const&) const = default;
};
// A hosts file line's key in its list (LazyList): its address.
inline std::string_view ListKey(HostsEntryState const& entry) { return entry.ip; }
// Reads line `index` of the hosts file from its text in the state file, for
// LazyList; throws HostCtlException, naming the file, when it cannot.
void ReadRecordText(std::string_view text, size_t index, HostsEntryState& out);

// One open socket of a netstack instance. `protocol` is "tcp", "udp" or "ip"
// (raw); `state` is the TCP state number (0 closed, 1 listen, ... 10
// time-wait), 0 for the others. `world_id` is the world that owns the socket.
struct ConnectionState {
  std::string netstack;
  std::string protocol;
  uint32_t recv_q = 0;
  uint32_t send_q = 0;
  std::string local_address;
  uint16_t local_port = 0;
  std::string foreign_address;
  uint16_t foreign_port = 0;
  uint32_t state = 0;
  uint32_t world_id = 0;
  std::string cc_algo;
};

struct IpArea {
  // Whether IPv6 is on for the whole IP stack, as configured: it takes
  // effect at the next boot: until then nothing of IPv6 in force changes.
  bool ipv6_enabled = true;
  // All netstack instances, configured and running, in the order made.
  std::vector<NetstackState> netstacks;
  // One routing table per netstack instance, by key: exactly one for each
  // instance of `netstacks`.
  std::vector<NetstackRoutes> routes;
  // The host's Orvik network interfaces, in the order they were made.
  std::vector<InterfaceState> interfaces;
  // Command lines the library was asked to run, oldest first. The simulated
  // host records them and runs nothing.
  std::vector<std::string> executed_commands;
  // The IPsec databases, in the order entries were added.
  std::vector<IpSecSaRecord> ipsec_sas;
  std::vector<IpSecSpRecord> ipsec_sps;
  // DNS client configuration by netstack instance; an instance without an
  // entry has no servers and no search domains.
  std::vector<DnsConfigState> dns;
  // The user's lines of the hosts file, in file order; a batch may add
  // thousands.
  LazyList<HostsEntryState> hosts;
  // Open sockets of all netstack instances.
  std::vector<ConnectionState> connections;
};

// The netstack instance with that key, or null.
NetstackState* FindNetstack(IpArea& area, std::string const& key);
NetstackState const* FindNetstack(IpArea const& area, std::string const& key);

// The routing state of the netstack instance with that key, or null.
NetstackRoutes* FindNetstackRoutes(IpArea& area, std::string const& netstack);
NetstackRoutes const* FindNetstackRoutes(IpArea const& area, std::string const& netstack);

// The interface of that name, or null.
InterfaceState* FindInterface(IpArea& area, std::string const& name);
InterfaceState const* FindInterface(IpArea const& area, std::string const& name);

}  // namespace OrvkCtl::Sim
