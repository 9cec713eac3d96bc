#include <algorithm>
#include <iterator>

#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/pnic.h"
#include "hostctl/port.h"

namespace HostCtl::Network {

PciDevice::PciDevice(std::string address, std::string vendorName, std::string deviceName)
    : address_(std::move(address)),
      vendorName_(std::move(vendorName)),
      deviceName_(std::move(deviceName)) {}

PciDevice::~PciDevice() = default;

std::string PciDevice::GetAddress() const {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::PciDevice_GetAddress);
  return address_;
}

std::string PciDevice::GetVendorName() const {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::PciDevice_GetVendorName);
  return vendorName_;
}

std::string PciDevice::GetDeviceName() const {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::PciDevice_GetDeviceName);
  return deviceName_;
}

Pnic::~Pnic() = default;

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::Operation;
using Sim::PnicState;

HostCtlException NotFound(std::string const& name) {
  return HostCtlException("Physical NIC " + name + " not found");
}

std::vector<HostCtl::Network::PnicLinkMode> LinkModes(
    std::vector<Sim::LinkModeState> const& modes) {
  std::vector<HostCtl::Network::PnicLinkMode> result;
  for (auto const& mode : modes) result.push_back({mode.speed, mode.duplex, mode.media});
  return result;
}

std::vector<HostCtl::Network::WakeOnMode> WakeOnModes(std::vector<uint32_t> const& modes) {
  std::vector<HostCtl::Network::WakeOnMode> result;
  for (uint32_t mode : modes) result.push_back(static_cast<HostCtl::Network::WakeOnMode>(mode));
  return result;
}

char const* WakeOnWord(HostCtl::Network::WakeOnMode mode) {
  static char const* const kWords[] = {"PHY activity",      "unicast",     "multicast",
                                       "broadcast",         "ARP",         "magic packet",
                                       "SecureOn password", "unsupported", "disabled"};
  auto value = static_cast<uint32_t>(mode);
  return value < std::size(kWords) ? kWords[value] : "unknown";
}

bool Contains(std::vector<uint32_t> const& values, uint32_t value) {
  return std::find(values.begin(), values.end(), value) != values.end();
}

}  // namespace

PnicImpl::PnicImpl(std::string const& name) : name_(name) {}
PnicImpl::~PnicImpl() = default;

void PnicImpl::Refresh() {
  CheckFault(Operation::PnicImpl_Refresh);
  auto const* nic = Sim::FindPnic(Sim::ReadHost(Sim::kAreaNic).nic, name_);
  if (!nic) throw NotFound(name_);
  cached_ = std::make_unique<PnicState>(*nic);
}

PnicState const& PnicImpl::Cached() {
  EnsureFresh();
  return *cached_;
}

void PnicImpl::Change(std::function<void(PnicState&)> const& change) {
  Sim::ChangeHost(Sim::kAreaNic, [&](Sim::HostModel& host) {
    auto* nic = Sim::FindPnic(host.nic, name_);
    if (!nic) throw NotFound(name_);
    change(*nic);
  });
  MarkStale();
}

std::string PnicImpl::GetName() {
  CheckFault(Operation::PnicImpl_GetName);
  return name_;
}

std::unique_ptr<HostCtl::Network::Port> PnicImpl::GetPort() {
  CheckFault(Operation::PnicImpl_GetPort);
  for (auto const& port : Sim::ReadHost(Sim::kAreaRuntime).runtime.ports) {
    if (port.type == Sim::kPortTypeUplink && port.client == name_) {
      return std::make_unique<PortImpl>(static_cast<int>(port.id));
    }
  }
  throw HostCtlException("Physical NIC " + name_ + " is not an uplink of any switch");
}

std::unique_ptr<HostCtl::Network::PciDevice> PnicImpl::GetPciDevice() {
  CheckFault(Operation::PnicImpl_GetPciDevice);
  auto const& nic = Cached();
  if (nic.pci_address.empty()) return nullptr;
  return std::make_unique<HostCtl::Network::PciDevice>(nic.pci_address, nic.pci_vendor,
                                                       nic.pci_device);
}

std::string PnicImpl::GetPseudoDescriptor() {
  CheckFault(Operation::PnicImpl_GetPseudoDescriptor);
  return Cached().pseudo_descriptor;
}

std::string PnicImpl::GetDriverName() {
  CheckFault(Operation::PnicImpl_GetDriverName);
  return Cached().driver;
}

HostCtl::Network::MacAddress PnicImpl::GetMacAddress() {
  CheckFault(Operation::PnicImpl_GetMacAddress);
  return HostCtl::Network::MacAddress(Cached().mac);
}

int32_t PnicImpl::GetMtu() {
  CheckFault(Operation::PnicImpl_GetMtu);
  return Cached().mtu;
}

uint32_t PnicImpl::GetSpeed() {
  CheckFault(Operation::PnicImpl_GetSpeed);
  auto const& nic = Cached();
  return LinkUp(nic) ? nic.speed : 0;
}

uint32_t PnicImpl::GetDuplex() {
  CheckFault(Operation::PnicImpl_GetDuplex);
  auto const& nic = Cached();
  return LinkUp(nic) ? nic.duplex : HostCtl::Network::DUPLEX_AUTO;
}

bool PnicImpl::IsAdminUp() {
  CheckFault(Operation::PnicImpl_IsAdminUp);
  return Cached().admin_up;
}

bool PnicImpl::IsLinkUp() {
  CheckFault(Operation::PnicImpl_IsLinkUp);
  return LinkUp(Cached());
}

bool PnicImpl::IsLinkStatusUp() {
  CheckFault(Operation::PnicImpl_IsLinkStatusUp);
  return LinkUp(Cached());
}

void PnicImpl::SetAdminUp(bool up) {
  CheckFault(Operation::PnicImpl_SetAdminUp);
  Change([&](PnicState& nic) { nic.admin_up = up; });
}

void PnicImpl::GetInfo(HostCtl::Network::PnicInfo& info) {
  CheckFault(Operation::PnicImpl_GetInfo);
  auto const& nic = Cached();
  info.supportedPorts = nic.supported_ports;
  info.supportedLinkModes = LinkModes(nic.supported_link_modes);
  info.supportsAutoNegotiation = nic.supports_auto_negotiation;
  info.advertisedLinkModes = LinkModes(nic.advertised_link_modes);
  info.advertisedAutoNegotiation = nic.advertised_auto_negotiation;
  info.port = nic.port;
  info.phyAddress = nic.phy_address;
  info.transceiver = nic.transceiver;
  info.autoNegotiation = nic.auto_negotiation;
  info.supportsWakeOn = nic.supports_wake_on;
  info.supportedWakeOnModes = WakeOnModes(nic.supported_wake_on);
  info.wakeOnModes = WakeOnModes(nic.wake_on);
  info.supportsMessageLevel = nic.supports_message_level;
  info.messageLevel = nic.message_level;
  info.virtualAddress = nic.virtual_address;
  info.linkStatus = LinkUp(nic) ? "Up" : "Down";
}

void PnicImpl::SetInfo(HostCtl::Network::PnicInfo const& info) {
  CheckFault(Operation::PnicImpl_SetInfo);
  Change([&](PnicState& nic) {
    if (info.portChanged) {
      if (!Contains(nic.supported_ports, info.port)) {
        throw HostCtlException("Port type " + std::to_string(info.port) + " is not supported by " +
                               name_);
      }
      nic.port = info.port;
    }
    if (info.phyAddressChanged) {
      if (info.phyAddress > 31) {
        throw HostCtlException("PHY address " + std::to_string(info.phyAddress) + " of " + name_ +
                               " is out of range 0 to 31");
      }
      nic.phy_address = info.phyAddress;
    }
    if (info.virtualAddressChanged) {
      if (!HostCtl::Network::MacAddress::IsValid(info.virtualAddress)) {
        throw HostCtlException("Invalid virtual address " + info.virtualAddress + " for " + name_);
      }
      HostCtl::Network::MacAddress address(info.virtualAddress);
      if (address.GetBytes()[0] & 1) {
        throw HostCtlException("Virtual address " + info.virtualAddress + " for " + name_ +
                               " is not a unicast address");
      }
      nic.virtual_address = address.GetStringAddress();
    }
    if (info.transceiverChanged) {
      if (info.transceiver > 1) {
        throw HostCtlException("Transceiver type " + std::to_string(info.transceiver) +
                               " is not supported by " + name_);
      }
      nic.transceiver = info.transceiver;
    }
    if (info.wakeOnChanged) {
      if (!nic.supports_wake_on) throw HostCtlException(name_ + " does not support wake-on-LAN");
      std::vector<uint32_t> modes;
      for (auto mode : info.wakeOnModes) {
        auto value = static_cast<uint32_t>(mode);
        if (!Contains(nic.supported_wake_on, value)) {
          throw HostCtlException(std::string("Wake-on-LAN by ") + WakeOnWord(mode) +
                                 " is not supported by " + name_);
        }
        if (!Contains(modes, value)) modes.push_back(value);
      }
      std::sort(modes.begin(), modes.end());
      nic.wake_on = modes;
    }
    if (info.messageLevelChanged) {
      if (!nic.supports_message_level) {
        throw HostCtlException("The driver of " + name_ + " has no message level");
      }
      nic.message_level = info.messageLevel;
    }
  });
}

void PnicImpl::SetSpeedAndDuplex(uint32_t speed, int32_t duplex) {
  CheckFault(Operation::PnicImpl_SetSpeedAndDuplex);
  Change([&](PnicState& nic) {
    if (speed == 0 && duplex == HostCtl::Network::DUPLEX_AUTO) {
      if (!nic.supports_auto_negotiation) {
        throw HostCtlException(name_ + " does not support auto negotiation");
      }
      nic.auto_negotiation = true;
      nic.advertised_auto_negotiation = true;
      nic.advertised_link_modes = nic.supported_link_modes;
      // The partner agrees on the best mode both sides offer.
      nic.speed = 0;
      nic.duplex = HostCtl::Network::DUPLEX_HALF;
      for (auto const& mode : nic.supported_link_modes) {
        auto fast = static_cast<uint32_t>(mode.speed);
        if (fast > nic.speed ||
            (fast == nic.speed && mode.duplex == HostCtl::Network::DUPLEX_FULL)) {
          nic.speed = fast;
          nic.duplex = mode.duplex;
        }
      }
      return;
    }
    if (duplex != HostCtl::Network::DUPLEX_FULL && duplex != HostCtl::Network::DUPLEX_HALF) {
      throw HostCtlException("Invalid duplex " + std::to_string(duplex) + " for " + name_);
    }
    std::vector<Sim::LinkModeState> matching;
    for (auto const& mode : nic.supported_link_modes) {
      if (static_cast<uint32_t>(mode.speed) == speed &&
          mode.duplex == static_cast<uint32_t>(duplex)) {
        matching.push_back(mode);
      }
    }
    if (matching.empty()) {
      throw HostCtlException("Speed " + std::to_string(speed) + " Mbps " +
                             (duplex == HostCtl::Network::DUPLEX_FULL ? "full" : "half") +
                             " duplex is not supported by " + name_);
    }
    nic.auto_negotiation = false;
    nic.advertised_auto_negotiation = false;
    nic.advertised_link_modes = matching;
    nic.speed = speed;
    nic.duplex = static_cast<uint32_t>(duplex);
    // Without negotiation there is nothing to resolve pause frames with.
    nic.pause.auto_negotiation = false;
    nic.pause.rx_resolution = 0;
    nic.pause.tx_resolution = 0;
  });
}

void PnicImpl::SetPauseParams(HostCtl::Network::PnicPauseParams& params) {
  CheckFault(Operation::PnicImpl_SetPauseParams);
  Change([&](PnicState& nic) {
    if (!nic.pause.supported) {
      throw HostCtlException("Pause parameters are not supported by " + name_);
    }
    if (params.autoNegotiation && !nic.auto_negotiation) {
      throw HostCtlException("Unable to negotiate pause frames on " + name_ +
                             ": link auto negotiation is disabled");
    }
    nic.pause.auto_negotiation = params.autoNegotiation;
    nic.pause.rx = params.rx;
    nic.pause.tx = params.tx;
    if (params.autoNegotiation) {
      // The partner takes what is advertised.
      nic.pause.rx_resolution = params.rx ? 1 : 2;
      nic.pause.tx_resolution = params.tx ? 1 : 2;
    } else {
      nic.pause.rx_resolution = 0;
      nic.pause.tx_resolution = 0;
    }
  });
}

void PnicImpl::GetPauseParams(HostCtl::Network::PnicPauseParams& params) {
  CheckFault(Operation::PnicImpl_GetPauseParams);
  auto const& pause = Cached().pause;
  params.supported = pause.supported;
  params.autoNegotiation = pause.auto_negotiation;
  params.rx = pause.rx;
  params.tx = pause.tx;
  params.rxResolution = pause.rx_resolution;
  params.txResolution = pause.tx_resolution;
}

void PnicImpl::GetDriverInfo(HostCtl::Network::PnicDriverInfo& info) {
  CheckFault(Operation::PnicImpl_GetDriverInfo);
  auto const& nic = Cached();
  info.driver = nic.driver;
  info.version = nic.driver_version;
  info.firmwareVersion = nic.firmware_version;
  info.busInfo = nic.pci_address.empty() ? "N/A" : nic.pci_address;
}

void PnicImpl::RestartNegotiation() {
  CheckFault(Operation::PnicImpl_RestartNegotiation);
  Change([&](PnicState& nic) {
    if (!nic.admin_up) {
      throw HostCtlException("Unable to restart negotiation on " + name_ + ": device is down");
    }
    if (!nic.auto_negotiation) {
      throw HostCtlException("Unable to restart negotiation on " + name_ +
                             ": auto negotiation is disabled");
    }
    ++nic.negotiation_restarts;
  });
}

}  // namespace OrvkCtl::Network
