// JSON form of the vswitch area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

JSON_RANGE(TeamingPolicyState, team_policy, 0, 4)
JSON_RANGE(TeamingPolicyState, max_active_uplinks, 0, INT32_MAX)
JSON_RECORD(TeamingPolicyState, set_mask, team_policy, team_flag, notify_switch_on_failure,
            rolling_restoration, link_set_mask, link_value_bits, uplink_order, max_active_uplinks)
JSON_RECORD(SecurityPolicyState, set_mask, allow_promiscuous, allow_mac_change,
            allow_forged_transmits)
JSON_RECORD(ShapingPolicyState, set_mask, enabled, peak_bps, average_bps, burst_size)
JSON_RANGE(PortGroupState, vlan_id, 0, 4095)
JSON_RANGE(PortGroupState, active_clients, 0, INT32_MAX)
JSON_RECORD(PortGroupState, name, vlan_id, active_clients, teaming, security, shaping)

void ReadRecordText(std::string_view text, size_t index, PortGroupState& out) {
  ReadListElement(text, index, out, "vswitch", "port_groups");
}
JSON_RANGE(StandardSwitchState, configured_ports, 0, INT32_MAX)
JSON_RANGE(StandardSwitchState, cdp_status, 0, 3)
JSON_RECORD(StandardSwitchState, name, configured_ports, mtu, cdp_status, beacon_interval,
            beacon_threshold, checksum_offload, segmentation_offload, vlan_tagging, uplinks,
            teaming, security, shaping, port_groups)

JSON_RANGE(DVPortState, lacp_mode, 1, 2)
JSON_RECORD(DVPortState, id, portgroup_id, connection_id, name, uplink, lacp_enabled, lacp_mode)
JSON_ONE_OF(LacpMemberState, state, "Bundled", "Independent", "Hot-standby", "Suspended", "Down")
JSON_RECORD(LacpMemberState, nic, state, port_number, port_priority, admin_key, oper_key,
            port_state, partner_age, partner_port_number, partner_port_priority, partner_oper_key,
            partner_port_state, partner_device_id, partner_flags, rx_lacpdus, tx_lacpdus, rx_errors,
            tx_errors)
JSON_RANGE(LagState, mode, 1, 2)
JSON_RANGE(LagState, load_balance, 0, 20)
JSON_RECORD(LagState, id, name, mode, load_balance, uplink_count, running, members)
JSON_RANGE(DistributedSwitchState, configured_ports, 0, INT32_MAX)
JSON_RANGE(DistributedSwitchState, cdp_status, 0, 3)
JSON_RANGE(DistributedSwitchState, beacon_timeout, -1, INT32_MAX)
JSON_RECORD(DistributedSwitchState, name, id, configured_ports, mtu, cdp_status, beacon_timeout,
            corvane_branded, uplinks, ports, uplink_ports, lags)

JSON_RECORD(VswitchArea, standard_switches, distributed_switches)

}  // namespace OrvkCtl::Sim
