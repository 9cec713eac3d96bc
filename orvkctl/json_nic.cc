// JSON form of the nic area of the host state file.
#include "json_areas.h"

namespace OrvkCtl::Sim {

JSON_RANGE(LinkModeState, speed, 0, INT32_MAX)
JSON_RANGE(LinkModeState, duplex, 0, 2)
JSON_RANGE(LinkModeState, media, 0, 38)
JSON_RECORD(LinkModeState, speed, duplex, media)
JSON_RANGE(PauseState, rx_resolution, 0, 2)
JSON_RANGE(PauseState, tx_resolution, 0, 2)
JSON_RECORD(PauseState, supported, auto_negotiation, rx, tx, rx_resolution, tx_resolution)
JSON_RECORD(OffloadState, rx_checksum, tx_checksum, scatter_gather, tcp_segmentation, large_receive,
            generic_receive, engine, can_checksum, can_scatter_gather, can_tcp_segmentation)
JSON_RECORD(CoalesceState, supported, max_microseconds, max_frames, adaptive_rx, adaptive_tx,
            stats_block_usecs, sample_interval, pkt_rate_low, pkt_rate_high, rx_usecs, rx_frames,
            rx_usecs_irq, rx_frames_irq, tx_usecs, tx_frames, tx_usecs_irq, tx_frames_irq,
            rx_usecs_low, rx_frames_low, tx_usecs_low, tx_frames_low, rx_usecs_high, rx_frames_high,
            tx_usecs_high, tx_frames_high)
JSON_RECORD(RingState, supported, max_rx, max_rx_mini, max_rx_jumbo, max_tx, rx, rx_mini, rx_jumbo,
            tx)
JSON_RECORD(NicStatsState, tx_packets, rx_packets, tx_bytes, rx_bytes, tx_errors, rx_errors,
            tx_dropped, rx_dropped, rx_multicast, rx_broadcast, tx_multicast, tx_broadcast,
            rx_length_errors, rx_over_errors, rx_crc_errors, rx_frame_errors, rx_fifo_errors,
            rx_missed_errors, tx_aborted_errors, tx_fifo_errors, tx_carrier_errors,
            tx_heartbeat_errors, tx_window_errors, collisions)
JSON_RANGE(VlanStatsState, vlan_id, 0, 4095)
JSON_RECORD(VlanStatsState, vlan_id, rx_packets, tx_packets)
// The EEPROM is kept as one string of lowercase hex digits, two per byte.
JSON_HIDDEN void WriteJson(JsonWriter& writer, EepromImage const& image) {
  static char const kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(image.bytes.size() * 2);
  for (uint8_t byte : image.bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xf];
  }
  WriteJson(writer, text);
}

JSON_HIDDEN void ReadJson(JsonValue const& value, EepromImage& image) {
  if (!value.IsString()) throw JsonError("expected a string of hex digits");
  std::string_view text(value.GetString(), value.GetStringLength());
  if (text.size() % 2 != 0) throw JsonError("EEPROM image of odd length");
  auto digit = [](char c) -> uint8_t {
    if (c >= '0' && c <= '9') return static_cast<uint8_t>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<uint8_t>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') return static_cast<uint8_t>(c - 'A' + 10);
    throw JsonError("EEPROM image with a character that is no hex digit");
  };
  std::vector<uint8_t> bytes;
  bytes.reserve(text.size() / 2);
  for (size_t i = 0; i < text.size(); i += 2) {
    bytes.push_back(static_cast<uint8_t>(digit(text[i]) << 4 | digit(text[i + 1])));
  }
  image.bytes = std::move(bytes);
}

JSON_HIDDEN bool SameJson(EepromImage const& a, EepromImage const& b) { return a.bytes == b.bytes; }

JSON_HIDDEN bool SameAsJson(EepromImage const& image, JsonValue const& value) {
  if (!value.IsString() || value.GetStringLength() != image.bytes.size() * 2) return false;
  static char const kDigits[] = "0123456789abcdef";
  char const* text = value.GetString();
  for (size_t i = 0; i < image.bytes.size(); ++i) {
    if (text[2 * i] != kDigits[image.bytes[i] >> 4] ||
        text[2 * i + 1] != kDigits[image.bytes[i] & 0xf]) {
      return false;
    }
  }
  return true;
}

JSON_RANGE(AttachmentState, vlan_id, 0, 4095)
JSON_RECORD(AttachmentState, branch, vlan_id)
JSON_RECORD(VfStatsState, rx_unicast_pkts, rx_unicast_bytes, rx_multicast_pkts, rx_multicast_bytes,
            rx_broadcast_pkts, rx_broadcast_bytes, rx_out_of_buffer, rx_error_drops, rx_lro_pkts,
            rx_lro_bytes, tx_unicast_pkts, tx_unicast_bytes, tx_multicast_pkts, tx_multicast_bytes,
            tx_broadcast_pkts, tx_broadcast_bytes, tx_errors, tx_discards, tx_tso_pkts,
            tx_tso_bytes)
JSON_RECORD(VfState, vf_id, active, pci_address, owner_world, stats)
JSON_RECORD(SriovState, enabled, vfs)
JSON_RECORD(NetqueuePluginState, module, plugin, description, active)
JSON_RECORD(NetqueueState, supported, max_tx_queues, max_rx_queues, tx_queues, rx_queues,
            balancer_enabled, supported_settings, allowed_settings, filter_classes, plugins)
JSON_RECORD(SoftwareSimulationState, simulated, required)
JSON_RECORD(HwCapState, reported, supported, activated)
JSON_RECORD(DcbAppState, app_type, protocol_id, user_priority)
JSON_RANGE(DcbState, mode, 0, 3)
JSON_RECORD(DcbState, supported, mode, enabled, cap_priority_group, cap_pfc, cap_up_to_tc,
            cap_pg_traffic_classes, cap_pfc_traffic_classes, pfc_enabled, pfc_config, ets_willing,
            ets_capacity, ets_cbs_supported, ets_tx_bandwidth, ets_rx_bandwidth, ets_tsa,
            ets_priority, ets_rec_bandwidth, ets_rec_tsa, ets_rec_priority, pfc_traffic_classes,
            pfc_mask, pfc_macsec_bypass, pfc_delay, pfc_sent, pfc_received, apps)
JSON_RANGE(PnicState, duplex, 0, 2)
JSON_RANGE(PnicState, supported_ports, 0, 6)
JSON_RANGE(PnicState, port, 0, 6)
JSON_RANGE(PnicState, phy_address, 0, 31)
JSON_RANGE(PnicState, transceiver, 0, 1)
JSON_RANGE(PnicState, supported_wake_on, 0, 8)
JSON_RANGE(PnicState, wake_on, 0, 8)
JSON_RECORD(PnicState, name, pci_address, pci_vendor, pci_device, pseudo_descriptor, driver,
            driver_version, firmware_version, mac, mtu, admin_up, carrier, speed, duplex,
            supported_ports, port, supported_link_modes, advertised_link_modes,
            supports_auto_negotiation, advertised_auto_negotiation, auto_negotiation, phy_address,
            transceiver, supports_wake_on, supported_wake_on, wake_on, supports_message_level,
            message_level, virtual_address, pause, negotiation_restarts, offload, coalesce, ring,
            stats, vlan_stats_enabled, vlan_stats, eeprom, eeprom_magic, diagnostics, attachments,
            sriov, netqueue, software_simulation, hw_cap, dcb)

void ReadRecordText(std::string_view text, size_t index, PnicState& out) {
  ReadListElement(text, index, out, "nic", "pnics");
}

JSON_RECORD(NicArea, pnics)

}  // namespace OrvkCtl::Sim
