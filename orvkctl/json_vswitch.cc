// JSON form of the vswitch area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(TeamingPolicyState, set_mask, team_policy,
                                                team_flag, notify_switch_on_failure,
                                                rolling_restoration, link_set_mask, link_value_bits,
                                                uplink_order, max_active_uplinks)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(SecurityPolicyState, set_mask, allow_promiscuous,
                                                allow_mac_change, allow_forged_transmits)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(ShapingPolicyState, set_mask, enabled, peak_bps,
                                                average_bps, burst_size)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(PortGroupState, name, vlan_id, active_clients,
                                                teaming, security, shaping)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(StandardSwitchState, name, configured_ports, mtu,
                                                cdp_status, beacon_interval, beacon_threshold,
                                                checksum_offload, segmentation_offload,
                                                vlan_tagging, uplinks, teaming, security, shaping,
                                                port_groups)

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(DVPortState, id, portgroup_id, connection_id, name,
                                                uplink, lacp_enabled, lacp_mode)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(
    LacpMemberState, nic, state, port_number, port_priority, admin_key, oper_key, port_state,
    partner_age, partner_port_number, partner_port_priority, partner_oper_key, partner_port_state,
    partner_device_id, partner_flags, rx_lacpdus, tx_lacpdus, rx_errors, tx_errors)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(LagState, id, name, mode, load_balance,
                                                uplink_count, running, members)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(DistributedSwitchState, name, id, configured_ports,
                                                mtu, cdp_status, beacon_timeout, corvane_branded,
                                                uplinks, ports, uplink_ports, lags)

void to_json(nlohmann::json& j, VswitchArea const& area) {
  j = nlohmann::json::object();
  j["standard_switches"] = area.standard_switches;
  j["distributed_switches"] = area.distributed_switches;
}

void from_json(nlohmann::json const& j, VswitchArea& area) {
  area = VswitchArea();
  if (j.contains("standard_switches")) {
    area.standard_switches = j.at("standard_switches").get<std::vector<StandardSwitchState>>();
  }
  if (j.contains("distributed_switches")) {
    j.at("distributed_switches").get_to(area.distributed_switches);
  }
}

}  // namespace OrvkCtl::Sim
