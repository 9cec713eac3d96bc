// Run-time views: VMs, ports, ENS: records of the simulated host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace OrvkCtl::Sim {

// Port types: a port faces a host interface, a VM, or the wire. An uplink
// port sees its two filter chains the other way round.
constexpr int kPortTypeInterface = 1;
constexpr int kPortTypeVm = 3;
constexpr int kPortTypeUplink = 4;

// One filter on a port. `outbound` tells which of the port's two chains it
// sits in; `chain_key` is its place in that chain. The detail counters are
// valid only with `has_detail`.
struct PortFilterState {
  std::string name;
  std::string chain_key;
  bool active = true;
  bool outbound = false;
  bool has_detail = false;
  uint64_t packets_in = 0;
  uint64_t packets_out = 0;
  uint64_t packets_dropped = 0;
  uint64_t packets_filtered = 0;
  uint64_t packets_faulted = 0;
  uint64_t packets_queued = 0;
  uint64_t packets_injected = 0;
  uint64_t packet_errors = 0;
};

// One port of a switch, standard or distributed, with its client and its
// counters.
struct PortState {
  uint32_t id = 0;
  // The switch's name.
  std::string portset;
  int type = kPortTypeVm;
  // What is attached: an interface ("orvk0"), a VM's NIC ("web-01.eth0"), or
  // the uplink's NIC ("ornic0").
  std::string client;
  // Standard switches: the port group; distributed switches: the DVPort id.
  std::string portgroup;
  std::string dvport_id;
  // The world that leads the port: the VM's world id; 0 for none.
  uint32_t world_leader = 0;
  std::string mac_address;
  // The IPv4 address the client was last seen using; empty when unknown.
  std::string client_ipv4;
  // The uplink the port's traffic leaves through; empty: the switch's first
  // connected uplink.
  std::string team_uplink;
  uint64_t packets_sent = 0;
  uint64_t multicast_sent = 0;
  uint64_t broadcast_sent = 0;
  uint64_t packets_received = 0;
  uint64_t multicast_received = 0;
  uint64_t broadcast_received = 0;
  uint64_t tx_dropped = 0;
  uint64_t rx_dropped = 0;
  uint64_t bytes_sent = 0;
  uint64_t bytes_received = 0;
  // In the order they were attached.
  std::vector<PortFilterState> filters;
};

// A world of the host's scheduler: "vmm0:" and the VM's name for a VM.
struct WorldState {
  uint32_t id = 0;
  std::string name;
};

// One ENS context (lcore).
struct EnsLcoreState {
  uint64_t id = 0;
  // The associated switch; "null" for none.
  std::string switch_name = "null";
  // The NUMA node; -1 for none.
  int32_t affinity = -1;

  bool operator==(EnsLcoreState const&) const = default;
};

// The ENS contexts of the host. Context ids lie below `max_lcores`, which
// the host's CPUs bound by `lcore_limit`; `numa_nodes` nodes can take an
// affinity.
struct EnsState {
  uint32_t max_lcores = 8;
  uint32_t lcore_limit = 32;
  uint32_t numa_nodes = 2;
  // In rising order of id.
  std::vector<EnsLcoreState> lcores;

  bool operator==(EnsState const&) const = default;
};

// A multicast group an interface has joined, as a host that reports its
// memberships itself (a real host's kernel) has it.
struct MulticastMembershipState {
  std::string interface;
  std::string group;
  std::string link_layer;
  int32_t refcount = 1;
};

struct RuntimeArea {
  // All switch ports of the host, switch by switch.
  std::vector<PortState> ports;
  // The worlds that lead the VMs' ports.
  std::vector<WorldState> worlds;
  EnsState ens;
  // Whether the host reports its interfaces' multicast memberships itself;
  // when it does not (the simulated host), they follow from the interfaces'
  // addresses and joins. The linux host does not keep them.
  bool memberships_reported = false;
  std::vector<MulticastMembershipState> memberships;
};

// The port with that id, or null.
PortState* FindPort(RuntimeArea& area, uint32_t id);
PortState const* FindPort(RuntimeArea const& area, uint32_t id);

}  // namespace OrvkCtl::Sim
