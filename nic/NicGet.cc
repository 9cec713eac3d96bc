#include <iterator>
#include <string>
#include <vector>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "nic/PnicLookup.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {

const std::string kName = "Name";
const std::string kSupportedPorts = "Supported Ports";
const std::string kSupportsAutoNegotiation = "Supports Auto Negotiation";
const std::string kAdvertisedLinkModes = "Advertised Link Modes";
const std::string kAdvertisedAutoNegotiation = "Advertised Auto Negotiation";
const std::string kCableType = "Cable Type";
const std::string kPhyAddress = "PHY Address";
const std::string kVirtualAddress = "Virtual Address";
const std::string kTransceiver = "Transceiver";
const std::string kAutoNegotiation = "Auto Negotiation";
const std::string kSupportsWakeon = "Supports Wakeon";
const std::string kWakeon = "Wakeon";
const std::string kCurrentMessageLevel = "Current Message Level";
const std::string kLinkDetected = "Link Detected";
const std::string kSupportsPause = "Supports Pause";
const std::string kPauseAutonegotiate = "Pause Autonegotiate";
const std::string kPauseRx = "Pause RX";
const std::string kPauseTx = "Pause TX";
const std::string kLinkStatus = "Link Status";
const std::string kDriverInfo = "Driver Info";
const std::string kDriver = "Driver";
const std::string kVersion = "Version";
const std::string kFirmwareVersion = "Firmware Version";
const std::string kBusInfo = "Bus Info";
const std::string kAuto = "Auto";

// Port types as "Supported Ports" lists them.
std::string SupportedPortWord(uint32_t port) {
  static char const* const kWords[] = {"TP", "AUI", "BNC", "MII", "FIBRE", "DA", "BACKPLANE"};
  return port < std::size(kWords) ? kWords[port] : "UNKNOWN";
}

// Port types as "Cable Type" shows the one in use.
std::string CableTypeWord(uint32_t port) {
  static char const* const kWords[] = {"Twisted Pair", "AUI", "BNC",      "MII",
                                       "FIBRE",        "DA",  "BACKPLANE"};
  return port < std::size(kWords) ? kWords[port] : "";
}

std::string WakeOnWord(HostCtl::Network::WakeOnMode mode) {
  static char const* const kWords[] = {
      "PHY Activity",
      "Unicast Messagess",
      "Multicast Messages",
      "Broadcast Messages",
      "ARP",
      "MagicPacket(tm)",
      "Enable SecureOn(tm) Password for                            MagicPacket(tm)",
      "Unsupported",
      "Disabled",
  };
  auto value = static_cast<uint32_t>(mode);
  return value < std::size(kWords) ? kWords[value] : "None";
}

std::string MediaWord(int32_t media) {
  static char const* const kWords[] = {
      "None",    "Unknown", "BaseT",     "BaseX",    "BaseKX",     "BaseSX",         "BaseLX",
      "BaseKR",  "BaseLR",  "BaseSR",    "BaseER",   "BaseTwinax", "BaseTwinaxLong", "BaseLRM",
      "BaseCR1", "BaseKR2", "BaseMLD2",  "BaseKR4",  "BaseKX4",    "BaseCR4",        "BaseSR4",
      "BaseLR4", "BaseR4",  "BaseSGMII", "BaseSFI",  "XLPPI",      "BaseCX-SGMII",   "BaseDR4",
      "BaseFR4", "AUI-8",   "AUI-4",     "BaseSR16", "BaseFR8",    "BaseLR8",        "AUI-16",
      "BaseER4", "BaseER8", "BaseCX4",   "BaseCR2",
  };
  if (media < 0 || static_cast<size_t>(media) >= std::size(kWords)) return kWords[1];
  return kWords[media];
}

std::string DuplexWord(uint32_t duplex) {
  switch (duplex) {
    case HostCtl::Network::DUPLEX_AUTO:
      return kAuto;
    case HostCtl::Network::DUPLEX_FULL:
      return "Full";
    case HostCtl::Network::DUPLEX_HALF:
      return "Half";
    default:
      return "";
  }
}

// "1000BaseT/Full"; a speed of 0 is "Auto" alone.
std::string LinkModeText(HostCtl::Network::PnicLinkMode const& mode) {
  if (mode.speed == 0) return kAuto;
  return std::to_string(mode.speed) + MediaWord(mode.mediaType) + "/" + DuplexWord(mode.duplex);
}
}  // namespace

NETWORK_COMMAND_NEW(NicGet, Struct)

NicGet::NicGet() {
  SetDescription("Get the generic configuration of a network device");
  SetDefaultOutputFormatter("simple");
}

std::shared_ptr<MetaStruct> NicGet::GetOutputStructure() {
  auto result = MetaStruct::New("NICInfo");
  result->SetField(kName, MetaString::New());
  result->SetField(kSupportedPorts, MetaList::New(MetaType::String));
  result->SetField(kSupportsAutoNegotiation, MetaBool::New());
  result->SetField(kAdvertisedLinkModes, MetaList::New(MetaType::String));
  result->SetField(kAdvertisedAutoNegotiation, MetaBool::New());
  result->SetField(kCableType, MetaString::New());
  result->SetField(kPhyAddress, MetaInt::New());
  result->SetField(kVirtualAddress, MetaString::New());
  result->SetField(kTransceiver, MetaString::New());
  result->SetField(kAutoNegotiation, MetaBool::New());
  result->SetField(kSupportsWakeon, MetaBool::New());
  result->SetField(kWakeon, MetaList::New(MetaType::String));
  result->SetField(kCurrentMessageLevel, MetaInt::New());
  result->SetField(kLinkDetected, MetaBool::New());
  result->SetField(kSupportsPause, MetaBool::New());
  result->SetField(kPauseAutonegotiate, MetaBool::New());
  result->SetField(kPauseRx, MetaBool::New());
  result->SetField(kPauseTx, MetaBool::New());
  result->SetField(kLinkStatus, MetaString::New());
  auto driverInfo = MetaStruct::New("NICDriverInfo");
  driverInfo->SetField(kDriver, MetaString::New());
  driverInfo->SetField(kVersion, MetaString::New());
  driverInfo->SetField(kFirmwareVersion, MetaString::New());
  driverInfo->SetField(kBusInfo, MetaString::New());
  result->SetField(kDriverInfo, driverInfo);
  return result;
}

std::shared_ptr<InputSpec> NicGet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::NicName, kConfiguredNicHelp)});
}

void NicGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                             std::shared_ptr<Output> const& output) {
  try {
    auto result = GetOutputStructure();
    std::string const& name = input->GetParameter(kNicName);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = FindNamedPnic(networkInfo, name, *output, MissingPnicWords::NoPnic);
    if (!pnic) return;
    HostCtl::Network::PnicInfo info;
    HostCtl::Network::PnicPauseParams pause;
    HostCtl::Network::PnicDriverInfo driver;
    pnic->GetInfo(info);
    pnic->GetPauseParams(pause);
    pnic->GetDriverInfo(driver);

    result->SetField(kName, name);
    std::vector<std::string> ports;
    for (uint32_t port : info.supportedPorts) ports.push_back(SupportedPortWord(port));
    result->SetField(kSupportedPorts, ports);
    result->SetField(kSupportsAutoNegotiation, info.supportsAutoNegotiation);
    std::vector<std::string> modes;
    for (auto const& mode : info.advertisedLinkModes) modes.push_back(LinkModeText(mode));
    result->SetField(kAdvertisedLinkModes, modes);
    result->SetField(kAdvertisedAutoNegotiation, info.advertisedAutoNegotiation);
    result->SetField(kCableType, CableTypeWord(info.port));
    result->SetField(kPhyAddress, info.phyAddress);
    result->SetField(kVirtualAddress, info.virtualAddress);
    result->SetField(kTransceiver, info.transceiver == 0   ? "internal"
                                   : info.transceiver == 1 ? "external"
                                                           : "");
    result->SetField(kAutoNegotiation, info.autoNegotiation);
    if (info.supportsWakeOn) {
      std::vector<std::string> wakeOn;
      for (auto mode : info.wakeOnModes) wakeOn.push_back(WakeOnWord(mode));
      result->SetField(kWakeon, wakeOn);
      result->SetField(kSupportsWakeon, true);
    } else {
      result->SetField(kWakeon, std::vector<std::string>{"None"});
      result->SetField(kSupportsWakeon, false);
    }
    result->SetField(kLinkStatus, info.linkStatus);
    result->SetField(kCurrentMessageLevel,
                     info.supportsMessageLevel ? static_cast<long>(info.messageLevel) : -1L);
    result->SetField(kLinkDetected, pnic->IsLinkUp());
    result->SetField(kSupportsPause, pause.supported);
    if (pause.supported) {
      result->SetField(kPauseAutonegotiate, pause.autoNegotiation);
      result->SetField(kPauseRx, pause.rx);
      result->SetField(kPauseTx, pause.tx);
    }
    auto driverInfo = MetaStruct::New("NICDriverInfo");
    driverInfo->SetField(kDriver, driver.driver);
    driverInfo->SetField(kVersion, driver.version);
    driverInfo->SetField(kFirmwareVersion, driver.firmwareVersion);
    driverInfo->SetField(kBusInfo, driver.busInfo);
    result->SetField(kDriverInfo, driverInfo);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
