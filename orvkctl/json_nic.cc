// JSON form of the nic area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(LinkModeState, speed, duplex, media)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(PauseState, supported, auto_negotiation, rx, tx,
                                                rx_resolution, tx_resolution)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(OffloadState, rx_checksum, tx_checksum,
                                                scatter_gather, tcp_segmentation, large_receive,
                                                generic_receive, engine, can_checksum,
                                                can_scatter_gather, can_tcp_segmentation)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(CoalesceState, supported, max_microseconds,
                                                max_frames, adaptive_rx, adaptive_tx,
                                                stats_block_usecs, sample_interval, pkt_rate_low,
                                                pkt_rate_high, rx_usecs, rx_frames, rx_usecs_irq,
                                                rx_frames_irq, tx_usecs, tx_frames, tx_usecs_irq,
                                                tx_frames_irq, rx_usecs_low, rx_frames_low,
                                                tx_usecs_low, tx_frames_low, rx_usecs_high,
                                                rx_frames_high, tx_usecs_high, tx_frames_high)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(RingState, supported, max_rx, max_rx_mini,
                                                max_rx_jumbo, max_tx, rx, rx_mini, rx_jumbo, tx)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(NicStatsState, tx_packets, rx_packets, tx_bytes,
                                                rx_bytes, tx_errors, rx_errors, tx_dropped,
                                                rx_dropped, rx_multicast, rx_broadcast,
                                                tx_multicast, tx_broadcast, rx_length_errors,
                                                rx_over_errors, rx_crc_errors, rx_frame_errors,
                                                rx_fifo_errors, rx_missed_errors, tx_aborted_errors,
                                                tx_fifo_errors, tx_carrier_errors,
                                                tx_heartbeat_errors, tx_window_errors, collisions)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(VlanStatsState, vlan_id, rx_packets, tx_packets)
// The EEPROM is kept as one string of lowercase hex digits, two per byte.
void to_json(nlohmann::json& j, EepromImage const& image) {
  static char const kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(image.bytes.size() * 2);
  for (uint8_t byte : image.bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xf];
  }
  j = text;
}

void from_json(nlohmann::json const& j, EepromImage& image) {
  auto const& text = j.get_ref<std::string const&>();
  if (text.size() % 2 != 0) throw std::invalid_argument("EEPROM image of odd length");
  auto digit = [](char c) -> uint8_t {
    if (c >= '0' && c <= '9') return static_cast<uint8_t>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<uint8_t>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') return static_cast<uint8_t>(c - 'A' + 10);
    throw std::invalid_argument("EEPROM image with a character that is no hex digit");
  };
  image.bytes.clear();
  image.bytes.reserve(text.size() / 2);
  for (size_t i = 0; i < text.size(); i += 2) {
    image.bytes.push_back(static_cast<uint8_t>(digit(text[i]) << 4 | digit(text[i + 1])));
  }
}

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(AttachmentState, branch, vlan_id)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(
    VfStatsState, rx_unicast_pkts, rx_unicast_bytes, rx_multicast_pkts, rx_multicast_bytes,
    rx_broadcast_pkts, rx_broadcast_bytes, rx_out_of_buffer, rx_error_drops, rx_lro_pkts,
    rx_lro_bytes, tx_unicast_pkts, tx_unicast_bytes, tx_multicast_pkts, tx_multicast_bytes,
    tx_broadcast_pkts, tx_broadcast_bytes, tx_errors, tx_discards, tx_tso_pkts, tx_tso_bytes)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(VfState, vf_id, active, pci_address, owner_world,
                                                stats)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(SriovState, enabled, vfs)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(NetqueuePluginState, module, plugin, description,
                                                active)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(NetqueueState, supported, max_tx_queues,
                                                max_rx_queues, tx_queues, rx_queues,
                                                balancer_enabled, supported_settings,
                                                allowed_settings, filter_classes, plugins)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(SoftwareSimulationState, simulated, required)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(HwCapState, reported, supported, activated)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(DcbAppState, app_type, protocol_id, user_priority)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(
    DcbState, supported, mode, enabled, cap_priority_group, cap_pfc, cap_up_to_tc,
    cap_pg_traffic_classes, cap_pfc_traffic_classes, pfc_enabled, pfc_config, ets_willing,
    ets_capacity, ets_cbs_supported, ets_tx_bandwidth, ets_rx_bandwidth, ets_tsa, ets_priority,
    ets_rec_bandwidth, ets_rec_tsa, ets_rec_priority, pfc_traffic_classes, pfc_mask,
    pfc_macsec_bypass, pfc_delay, pfc_sent, pfc_received, apps)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(
    PnicState, name, pci_address, pci_vendor, pci_device, pseudo_descriptor, driver, driver_version,
    firmware_version, mac, mtu, admin_up, carrier, speed, duplex, supported_ports, port,
    supported_link_modes, advertised_link_modes, supports_auto_negotiation,
    advertised_auto_negotiation, auto_negotiation, phy_address, transceiver, supports_wake_on,
    supported_wake_on, wake_on, supports_message_level, message_level, virtual_address, pause,
    negotiation_restarts, offload, coalesce, ring, stats, vlan_stats_enabled, vlan_stats, eeprom,
    eeprom_magic, diagnostics, attachments, sriov, netqueue, software_simulation, hw_cap, dcb)

void to_json(nlohmann::json& j, NicArea const& area) {
  j = nlohmann::json::object();
  j["pnics"] = area.pnics;
}

void from_json(nlohmann::json const& j, NicArea& area) {
  area = NicArea();
  if (j.contains("pnics")) j.at("pnics").get_to(area.pnics);
}

}  // namespace OrvkCtl::Sim
