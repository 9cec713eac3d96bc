// Physical NICs: records of the simulated host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

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
  // How often the driver was asked to negotiate the link again.
  uint32_t negotiation_restarts = 0;

  bool operator==(PnicState const&) const = default;
};

struct NicArea {
  // The physical NICs, in the order the host enumerates them.
  std::vector<PnicState> pnics;
};

// The physical NIC of that name, or null.
PnicState* FindPnic(NicArea& area, std::string const& name);
PnicState const* FindPnic(NicArea const& area, std::string const& name);

}  // namespace OrvkCtl::Sim
