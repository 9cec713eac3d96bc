// Virtual switching: standard switches and their port groups: records of the
// simulated host. Policies are stored as configured, with their set masks;
// what is in force is worked out by the library when asked.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "lazy_list.h"

namespace OrvkCtl::Sim {

// A NIC teaming policy. `link_set_mask`/`link_value_bits` are the failure
// detection bits.
struct TeamingPolicyState {
  uint32_t set_mask = 0;
  int team_policy = 0;
  bool team_flag = false;
  bool notify_switch_on_failure = false;
  bool rolling_restoration = false;
  uint32_t link_set_mask = 0;
  uint32_t link_value_bits = 0;
  std::vector<std::string> uplink_order;
  int max_active_uplinks = 0;

  bool operator==(TeamingPolicyState const&) const = default;
};

struct SecurityPolicyState {
  uint32_t set_mask = 0;
  bool allow_promiscuous = false;
  bool allow_mac_change = false;
  bool allow_forged_transmits = false;

  bool operator==(SecurityPolicyState const&) const = default;
};

// Bandwidths in bits per second, burst size in bytes.
struct ShapingPolicyState {
  uint32_t set_mask = 0;
  bool enabled = false;
  uint64_t peak_bps = 0;
  uint64_t average_bps = 0;
  uint64_t burst_size = 0;

  bool operator==(ShapingPolicyState const&) const = default;
};

struct PortGroupState {
  std::string name;
  uint16_t vlan_id = 0;
  // Ports of the group in use by interfaces and VMs.
  int active_clients = 0;
  TeamingPolicyState teaming;
  SecurityPolicyState security;
  ShapingPolicyState shaping;

  bool operator==(PortGroupState const&) const = default;
};
// Reads port group `index` of a switch from its text in the state file, for
// LazyList; throws HostCtlException, naming the file, when it cannot.
void ReadRecordText(std::string_view text, size_t index, PortGroupState& out);

struct StandardSwitchState {
  std::string name;
  // Ports asked for; the portset has a few more for its own use.
  int configured_ports = 0;
  int mtu = 1500;
  int cdp_status = 1;  // 0 down, 1 listen, 2 advertise, 3 both
  int beacon_interval = 1;
  int beacon_threshold = 3;
  bool checksum_offload = true;
  bool segmentation_offload = true;
  bool vlan_tagging = true;
  // Uplink ports in the order connected. A name whose NIC has left the host
  // stays here until the uplink is removed.
  std::vector<std::string> uplinks;
  TeamingPolicyState teaming;
  SecurityPolicyState security;
  ShapingPolicyState shaping;
  // A host may have thousands: each is read from the state file when used.
  LazyList<PortGroupState> port_groups;

  bool operator==(StandardSwitchState const&) const = default;
};

// One port of a distributed switch. Whether it is in use, and by whom, is
// told by the switch ports of the runtime area that carry its id.
struct DVPortState {
  std::string id;
  std::string portgroup_id;
  // The connection id of the interface or VM attached to it; 0 for none.
  uint32_t connection_id = 0;
  // Uplink ports only: the port's name ("uplink1", "lag1-0"), the uplink
  // using it (empty for none), and LACP as its port group configures it
  // (mode 1 active, 2 passive).
  std::string name;
  std::string uplink;
  bool lacp_enabled = false;
  int lacp_mode = 1;

  bool operator==(DVPortState const&) const = default;
};

// The LACP agent's view of one uplink of a running LAG.
struct LacpMemberState {
  std::string nic;
  // "Bundled", "Independent", "Hot-standby", "Suspended" or "Down".
  std::string state = "Bundled";
  uint16_t port_number = 0;
  uint16_t port_priority = 255;
  uint16_t admin_key = 0;
  uint16_t oper_key = 0;
  // Actor state bits; bit 1 is the short timeout.
  uint8_t port_state = 0;
  uint32_t partner_age = 0;
  uint16_t partner_port_number = 0;
  uint16_t partner_port_priority = 0;
  uint16_t partner_oper_key = 0;
  uint8_t partner_port_state = 0;
  std::string partner_device_id;
  std::string partner_flags;
  uint64_t rx_lacpdus = 0;
  uint64_t tx_lacpdus = 0;
  uint64_t rx_errors = 0;
  uint64_t tx_errors = 0;

  bool operator==(LacpMemberState const&) const = default;
};

// A link aggregation group of a distributed switch. Its uplink ports are the
// switch's uplink ports named "<name>-0" and on.
struct LagState {
  uint32_t id = 0;
  std::string name;
  int mode = 1;  // 1 active, 2 passive
  int load_balance = 0;
  uint32_t uplink_count = 0;
  // Whether the LACP agent runs the group, and its view of each member.
  bool running = false;
  std::vector<LacpMemberState> members;

  bool operator==(LagState const&) const = default;
};

// A distributed switch the host takes part in. It is configured from outside
// the host: the host only reports it.
struct DistributedSwitchState {
  std::string name;
  // The switch's UUID, as 16 hex bytes separated by blanks and a dash.
  std::string id;
  int configured_ports = 0;
  int mtu = 1500;
  int cdp_status = 1;  // 0 down, 1 listen, 2 advertise, 3 both
  // Seconds; -1 while beaconing is off.
  int beacon_timeout = -1;
  bool corvane_branded = true;
  // Uplink ports, physical NICs or not (LAG members), in the switch's order.
  std::vector<std::string> uplinks;
  std::vector<DVPortState> ports;
  // The ports the uplinks use, apart from the ports of VMs and interfaces.
  std::vector<DVPortState> uplink_ports;
  std::vector<LagState> lags;

  bool operator==(DistributedSwitchState const&) const = default;
};

struct VswitchArea {
  std::vector<StandardSwitchState> standard_switches;
  std::vector<DistributedSwitchState> distributed_switches;
};

// The distributed switch of that name, or null.
DistributedSwitchState* FindDistributedSwitch(VswitchArea& area, std::string const& name);
DistributedSwitchState const* FindDistributedSwitch(VswitchArea const& area,
                                                    std::string const& name);

// The standard switch of that name, or null.
StandardSwitchState* FindStandardSwitch(VswitchArea& area, std::string const& name);
StandardSwitchState const* FindStandardSwitch(VswitchArea const& area, std::string const& name);

// The port group of that name on any standard switch, or null; `owner`, when
// given, receives its switch.
PortGroupState* FindPortGroup(VswitchArea& area, std::string const& name,
                              StandardSwitchState** owner = nullptr);
PortGroupState const* FindPortGroup(VswitchArea const& area, std::string const& name,
                                    StandardSwitchState const** owner = nullptr);

}  // namespace OrvkCtl::Sim
