#include "fault.h"
#include "host_store.h"
#include "hostctl/pnic.h"

namespace HostCtl::Network {

PciDevice::PciDevice(std::string address, std::string vendorName, std::string deviceName)
    : address_(std::move(address)),
      vendorName_(std::move(vendorName)),
      deviceName_(std::move(deviceName)) {}

PciDevice::~PciDevice() = default;

std::string PciDevice::GetAddress() const {
  OrvkCtl::Sim::CheckFault("PciDevice::GetAddress");
  return address_;
}

std::string PciDevice::GetVendorName() const {
  OrvkCtl::Sim::CheckFault("PciDevice::GetVendorName");
  return vendorName_;
}

std::string PciDevice::GetDeviceName() const {
  OrvkCtl::Sim::CheckFault("PciDevice::GetDeviceName");
  return deviceName_;
}

Pnic::~Pnic() = default;

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::PnicState;

HostCtlException NotFound(std::string const& name) {
  return HostCtlException("Physical NIC " + name + " not found");
}

bool LinkUp(PnicState const& nic) { return nic.admin_up && nic.carrier; }

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

}  // namespace

PnicImpl::PnicImpl(std::string const& name) : name_(name) {}
PnicImpl::~PnicImpl() = default;

void PnicImpl::Refresh() {
  CheckFault("PnicImpl::Refresh");
  auto const* nic = Sim::FindPnic(Sim::ReadHost().nic, name_);
  if (!nic) throw NotFound(name_);
  cached_ = std::make_unique<PnicState>(*nic);
}

PnicState const& PnicImpl::Cached() {
  EnsureFresh();
  return *cached_;
}

std::string PnicImpl::GetName() {
  CheckFault("PnicImpl::GetName");
  return name_;
}

std::unique_ptr<HostCtl::Network::PciDevice> PnicImpl::GetPciDevice() {
  CheckFault("PnicImpl::GetPciDevice");
  auto const& nic = Cached();
  if (nic.pci_address.empty()) return nullptr;
  return std::make_unique<HostCtl::Network::PciDevice>(nic.pci_address, nic.pci_vendor,
                                                       nic.pci_device);
}

std::string PnicImpl::GetPseudoDescriptor() {
  CheckFault("PnicImpl::GetPseudoDescriptor");
  return Cached().pseudo_descriptor;
}

std::string PnicImpl::GetDriverName() {
  CheckFault("PnicImpl::GetDriverName");
  return Cached().driver;
}

HostCtl::Network::MacAddress PnicImpl::GetMacAddress() {
  CheckFault("PnicImpl::GetMacAddress");
  return HostCtl::Network::MacAddress(Cached().mac);
}

int32_t PnicImpl::GetMtu() {
  CheckFault("PnicImpl::GetMtu");
  return Cached().mtu;
}

uint32_t PnicImpl::GetSpeed() {
  CheckFault("PnicImpl::GetSpeed");
  auto const& nic = Cached();
  return LinkUp(nic) ? nic.speed : 0;
}

uint32_t PnicImpl::GetDuplex() {
  CheckFault("PnicImpl::GetDuplex");
  auto const& nic = Cached();
  return LinkUp(nic) ? nic.duplex : HostCtl::Network::DUPLEX_AUTO;
}

bool PnicImpl::IsAdminUp() {
  CheckFault("PnicImpl::IsAdminUp");
  return Cached().admin_up;
}

bool PnicImpl::IsLinkUp() {
  CheckFault("PnicImpl::IsLinkUp");
  return LinkUp(Cached());
}

bool PnicImpl::IsLinkStatusUp() {
  CheckFault("PnicImpl::IsLinkStatusUp");
  return LinkUp(Cached());
}

void PnicImpl::SetAdminUp(bool up) {
  CheckFault("PnicImpl::SetAdminUp");
  Sim::ChangeHost([&](Sim::HostModel& host) {
    auto* nic = Sim::FindPnic(host.nic, name_);
    if (!nic) throw NotFound(name_);
    nic->admin_up = up;
  });
  MarkStale();
}

void PnicImpl::GetInfo(HostCtl::Network::PnicInfo& info) {
  CheckFault("PnicImpl::GetInfo");
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

void PnicImpl::GetPauseParams(HostCtl::Network::PnicPauseParams& params) {
  CheckFault("PnicImpl::GetPauseParams");
  auto const& pause = Cached().pause;
  params.supported = pause.supported;
  params.autoNegotiation = pause.auto_negotiation;
  params.rx = pause.rx;
  params.tx = pause.tx;
  params.rxResolution = pause.rx_resolution;
  params.txResolution = pause.tx_resolution;
}

void PnicImpl::GetDriverInfo(HostCtl::Network::PnicDriverInfo& info) {
  CheckFault("PnicImpl::GetDriverInfo");
  auto const& nic = Cached();
  info.driver = nic.driver;
  info.version = nic.driver_version;
  info.firmwareVersion = nic.firmware_version;
  info.busInfo = nic.pci_address.empty() ? "N/A" : nic.pci_address;
}

void PnicImpl::RestartNegotiation() {
  CheckFault("PnicImpl::RestartNegotiation");
  Sim::ChangeHost([&](Sim::HostModel& host) {
    auto* nic = Sim::FindPnic(host.nic, name_);
    if (!nic) throw NotFound(name_);
    if (!nic->admin_up) {
      throw HostCtlException("Unable to restart negotiation on " + name_ + ": device is down");
    }
    if (!nic->auto_negotiation) {
      throw HostCtlException("Unable to restart negotiation on " + name_ +
                             ": auto negotiation is disabled");
    }
    ++nic->negotiation_restarts;
  });
  MarkStale();
}

}  // namespace OrvkCtl::Network
