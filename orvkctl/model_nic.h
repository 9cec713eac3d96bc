// Physical NICs: records of the simulated host.
#pragma once

#include <cstddef>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "lazy_list.h"

namespace OrvkCtl::Sim {

// One speed/duplex/medium combination a device offers or advertises.
struct LinkModeState {
  int32_t speed = 0;    // Mbps; 0 automatic
  uint32_t duplex = 0;  // 0 automatic, 1 full, 2 half
  int32_t media = 0;    // index into the media words, e.g. 2 BaseT

  bool operator==(LinkModeState const&) const = default;
};

// Flow control (pause frames) of a device.
struct PauseState {
  bool supported = false;
  bool auto_negotiation = false;
  bool rx = false;
  bool tx = false;
  uint32_t rx_resolution = 0;  // outcome of negotiation: 0 not available, 1 on, else off
  uint32_t tx_resolution = 0;

  bool operator==(PauseState const&) const = default;
};

// Offloads of a device: what it can do and what is on.
struct OffloadState {
  bool rx_checksum = false;
  bool tx_checksum = false;
  bool scatter_gather = false;
  bool tcp_segmentation = false;
  bool large_receive = false;
  bool generic_receive = false;
  std::string engine;  // the driver's word for its offload engine
  bool can_checksum = false;
  bool can_scatter_gather = false;
  bool can_tcp_segmentation = false;

  bool operator==(OffloadState const&) const = default;
};

// Interrupt coalescing of a device. `supported` false: the driver has none,
// and every read or write fails.
struct CoalesceState {
  bool supported = false;
  uint32_t max_microseconds = 0;  // hardware limits of every *_usecs value
  uint32_t max_frames = 0;        // and of every *_frames value
  bool adaptive_rx = false;
  bool adaptive_tx = false;
  uint32_t stats_block_usecs = 0;
  uint32_t sample_interval = 0;
  uint32_t pkt_rate_low = 0;
  uint32_t pkt_rate_high = 0;
  uint32_t rx_usecs = 0;
  uint32_t rx_frames = 0;
  uint32_t rx_usecs_irq = 0;
  uint32_t rx_frames_irq = 0;
  uint32_t tx_usecs = 0;
  uint32_t tx_frames = 0;
  uint32_t tx_usecs_irq = 0;
  uint32_t tx_frames_irq = 0;
  uint32_t rx_usecs_low = 0;
  uint32_t rx_frames_low = 0;
  uint32_t tx_usecs_low = 0;
  uint32_t tx_frames_low = 0;
  uint32_t rx_usecs_high = 0;
  uint32_t rx_frames_high = 0;
  uint32_t tx_usecs_high = 0;
  uint32_t tx_frames_high = 0;

  bool operator==(CoalesceState const&) const = default;
};

// Ring sizes in entries. A maximum of 0 means the device has no such ring.
struct RingState {
  bool supported = false;
  uint32_t max_rx = 0;
  uint32_t max_rx_mini = 0;
  uint32_t max_rx_jumbo = 0;
  uint32_t max_tx = 0;
  uint32_t rx = 0;
  uint32_t rx_mini = 0;
  uint32_t rx_jumbo = 0;
  uint32_t tx = 0;

  bool operator==(RingState const&) const = default;
};

// Counters of a device since its driver was loaded.
struct NicStatsState {
  uint64_t tx_packets = 0;
  uint64_t rx_packets = 0;
  uint64_t tx_bytes = 0;
  uint64_t rx_bytes = 0;
  uint64_t tx_errors = 0;
  uint64_t rx_errors = 0;
  uint64_t tx_dropped = 0;
  uint64_t rx_dropped = 0;
  uint64_t rx_multicast = 0;
  uint64_t rx_broadcast = 0;
  uint64_t tx_multicast = 0;
  uint64_t tx_broadcast = 0;
  uint64_t rx_length_errors = 0;
  uint64_t rx_over_errors = 0;
  uint64_t rx_crc_errors = 0;
  uint64_t rx_frame_errors = 0;
  uint64_t rx_fifo_errors = 0;
  uint64_t rx_missed_errors = 0;
  uint64_t tx_aborted_errors = 0;
  uint64_t tx_fifo_errors = 0;
  uint64_t tx_carrier_errors = 0;
  uint64_t tx_heartbeat_errors = 0;
  uint64_t tx_window_errors = 0;
  uint64_t collisions = 0;

  bool operator==(NicStatsState const&) const = default;
};

// Packets of one VLAN through an uplink while VLAN statistics are on.
struct VlanStatsState {
  uint16_t vlan_id = 0;
  uint64_t rx_packets = 0;
  uint64_t tx_packets = 0;

  bool operator==(VlanStatsState const&) const = default;
};

// The bytes of a device's EEPROM; empty when the driver gives no access to
// it. Words are little endian; the first 64 words sum to kEepromChecksumSum
// when the image is sound, the 64th word making up the difference.
struct EepromImage {
  std::vector<uint8_t> bytes;

  bool operator==(EepromImage const&) const = default;
};
constexpr uint16_t kEepromChecksumSum = 0xBABA;
constexpr size_t kEepromChecksumWords = 64;
// Whether the first 64 words add up as they should (false for an image too
// small to hold them).
bool EepromChecksumValid(EepromImage const& image);
// Rewrites the checksum word so that the image is sound.
void SealEeprom(EepromImage& image);

// A branch uplink attached to the uplink that holds this record, its trunk.
struct AttachmentState {
  std::string branch;
  uint16_t vlan_id = 0;

  bool operator==(AttachmentState const&) const = default;
};

// Counters of one SR-IOV virtual function.
struct VfStatsState {
  uint64_t rx_unicast_pkts = 0;
  uint64_t rx_unicast_bytes = 0;
  uint64_t rx_multicast_pkts = 0;
  uint64_t rx_multicast_bytes = 0;
  uint64_t rx_broadcast_pkts = 0;
  uint64_t rx_broadcast_bytes = 0;
  uint64_t rx_out_of_buffer = 0;
  uint64_t rx_error_drops = 0;
  uint64_t rx_lro_pkts = 0;
  uint64_t rx_lro_bytes = 0;
  uint64_t tx_unicast_pkts = 0;
  uint64_t tx_unicast_bytes = 0;
  uint64_t tx_multicast_pkts = 0;
  uint64_t tx_multicast_bytes = 0;
  uint64_t tx_broadcast_pkts = 0;
  uint64_t tx_broadcast_bytes = 0;
  uint64_t tx_errors = 0;
  uint64_t tx_discards = 0;
  uint64_t tx_tso_pkts = 0;
  uint64_t tx_tso_bytes = 0;

  bool operator==(VfStatsState const&) const = default;
};

// One virtual function of an SR-IOV physical function.
struct VfState {
  uint32_t vf_id = 0;
  bool active = false;
  std::string pci_address;
  uint32_t owner_world = 0;  // the VM's world id; 0 while unassigned
  VfStatsState stats;

  bool operator==(VfState const&) const = default;
};

// SR-IOV of a physical NIC: whether it is a physical function, and its VFs.
struct SriovState {
  bool enabled = false;
  std::vector<VfState> vfs;

  bool operator==(SriovState const&) const = default;
};

// One netqueue load balancer plugin of a device; `active` while in use.
struct NetqueuePluginState {
  std::string module;
  std::string plugin;
  std::string description;
  bool active = false;

  bool operator==(NetqueuePluginState const&) const = default;
};

// Netqueue of a device. `supported` false: the device has none, and every
// read or write fails. Settings and filter classes are bit sets in the order
// of the host control records (bit 0 the first).
struct NetqueueState {
  bool supported = false;
  uint32_t max_tx_queues = 0;
  uint32_t max_rx_queues = 0;
  uint32_t tx_queues = 0;
  uint32_t rx_queues = 0;
  bool balancer_enabled = false;
  uint32_t supported_settings = 0;
  uint32_t allowed_settings = 0;
  uint32_t filter_classes = 0;
  std::vector<NetqueuePluginState> plugins;

  bool operator==(NetqueueState const&) const = default;
};

// Offload functions simulated in software, as bit sets of the software
// simulation mask: those simulated now, and those the device lacks in
// hardware, which must stay simulated.
struct SoftwareSimulationState {
  uint32_t simulated = 0;
  uint32_t required = 0;

  bool operator==(SoftwareSimulationState const&) const = default;
};

// Hardware capability bits of a device. `reported` false: the driver does
// not report them, and reading fails.
struct HwCapState {
  bool reported = false;
  uint64_t supported = 0;
  uint64_t activated = 0;

  bool operator==(HwCapState const&) const = default;
};

// One row of a device's DCB application table.
struct DcbAppState {
  std::string app_type;
  std::string protocol_id;
  std::string user_priority;

  bool operator==(DcbAppState const&) const = default;
};

using TcBytes = std::array<uint8_t, 8>;

// Data Center Bridging of a device. `supported` false: the device has none,
// and every read fails.
struct DcbState {
  bool supported = false;
  uint32_t mode = 0;  // 0 unknown, 1 CEN, 2 CEE, 3 IEEE
  bool enabled = false;
  bool cap_priority_group = false;
  bool cap_pfc = false;
  bool cap_up_to_tc = false;
  uint8_t cap_pg_traffic_classes = 0;
  uint8_t cap_pfc_traffic_classes = 0;
  bool pfc_enabled = false;
  uint8_t pfc_config = 0;
  // IEEE ETS.
  uint8_t ets_willing = 0;
  uint8_t ets_capacity = 0;
  std::string ets_cbs_supported;
  TcBytes ets_tx_bandwidth{};
  TcBytes ets_rx_bandwidth{};
  TcBytes ets_tsa{};
  TcBytes ets_priority{};
  TcBytes ets_rec_bandwidth{};
  TcBytes ets_rec_tsa{};
  TcBytes ets_rec_priority{};
  // IEEE PFC.
  uint8_t pfc_traffic_classes = 0;
  uint8_t pfc_mask = 0;
  uint8_t pfc_macsec_bypass = 0;
  uint8_t pfc_delay = 0;
  TcBytes pfc_sent{};
  TcBytes pfc_received{};
  std::vector<DcbAppState> apps;

  bool operator==(DcbState const&) const = default;
};

// One physical uplink. A device on the PCI bus has a PCI address; one without
// (USB, ACPI) has an empty address and a pseudo descriptor of the form
// "<kind>:<vendor>:<device>", e.g. "USB-NIC:Acme:Net100".
struct PnicState {
  std::string name;
  std::string pci_address;
  std::string pci_vendor;
  std::string pci_device;
  std::string pseudo_descriptor;

  std::string driver;
  std::string driver_version;
  std::string firmware_version;

  std::string mac;  // canonical text, "d2:6e:a0:00:10:00"
  int32_t mtu = 1500;
  bool admin_up = true;
  // A link partner is present on the wire; the link is up while the device is
  // administratively up too.
  bool carrier = true;
  uint32_t speed = 0;   // negotiated Mbps, reported while the link is up
  uint32_t duplex = 1;  // negotiated duplex, reported while the link is up

  std::vector<uint32_t> supported_ports;  // port types: 0 TP, 4 FIBRE, 5 DA, ...
  uint32_t port = 0;
  std::vector<LinkModeState> supported_link_modes;
  std::vector<LinkModeState> advertised_link_modes;
  bool supports_auto_negotiation = false;
  bool advertised_auto_negotiation = false;
  bool auto_negotiation = false;
  uint32_t phy_address = 0;
  uint32_t transceiver = 0;  // 0 internal, 1 external
  bool supports_wake_on = false;
  std::vector<uint32_t> supported_wake_on;  // wake-on modes: 0 PHY activity ... 5 magic packet
  std::vector<uint32_t> wake_on;
  bool supports_message_level = false;
  uint32_t message_level = 0;
  std::string virtual_address;

  PauseState pause;
  OffloadState offload;
  CoalesceState coalesce;
  RingState ring;
  NicStatsState stats;
  // Per-VLAN counters, kept by the switch the uplink is connected to; empty
  // while collection is off.
  bool vlan_stats_enabled = false;
  std::vector<VlanStatsState> vlan_stats;
  // How often the driver was asked to negotiate the link again.
  uint32_t negotiation_restarts = 0;
  NetqueueState netqueue;
  SoftwareSimulationState software_simulation;
  HwCapState hw_cap;
  DcbState dcb;

  // Diagnostics: the EEPROM with the key that unlocks writes to it (the
  // device id over the vendor id), and whether the driver dumps registers
  // and runs self tests.
  EepromImage eeprom;
  uint32_t eeprom_magic = 0;
  bool diagnostics = false;
  // Branch uplinks attached to this one as their trunk, in attach order.
  std::vector<AttachmentState> attachments;
  SriovState sriov;

  bool operator==(PnicState const&) const = default;
};

// Reads physical NIC `index` from its text in the state file, for LazyList;
// throws HostCtlException, naming the file, when it cannot.
void ReadRecordText(std::string_view text, size_t index, PnicState& out);

struct NicArea {
  // The physical NICs, in the order the host enumerates them; each is read
  // from the state file when used.
  LazyList<PnicState> pnics;
};

// The physical NIC of that name, or null.
PnicState* FindPnic(NicArea& area, std::string const& name);
PnicState const* FindPnic(NicArea const& area, std::string const& name);

}  // namespace OrvkCtl::Sim
