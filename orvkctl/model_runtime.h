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

// One world (a process or a VM's executable) by id.
struct WorldState {
  uint32_t id = 0;
  std::string name;
};

struct RuntimeArea {
  // All switch ports of the host, switch by switch.
  std::vector<PortState> ports;
  // The worlds the host runs, in order of id.
  std::vector<WorldState> worlds;
};

// The port with that id, or null.
PortState* FindPort(RuntimeArea& area, uint32_t id);
PortState const* FindPort(RuntimeArea const& area, uint32_t id);

}  // namespace OrvkCtl::Sim
