#include <cstdint>
#include <iterator>
#include <memory>
#include <string>

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
const std::string kPort = "port";
const std::string kPhyAddress = "phy-address";
const std::string kVirtualAddress = "virtual-address";
const std::string kTransceiverType = "transceiver-type";
const std::string kWakeOnLan = "wake-on-lan";
const std::string kMessageLevel = "message-level";
const std::string kSpeed = "speed";
const std::string kDuplex = "duplex";
const std::string kAuto = "auto";
const std::string kFull = "full";
const std::string kInternal = "internal";
const std::string kExternal = "external";

// The `port` values with their descriptions; the index is the port type.
struct PortChoice {
  char const* value;
  char const* description;
};
const PortChoice kPorts[] = {
    {"tp", "Select TP (Twisted Pair) as the device port"},
    {"aui", "Select AUI (Attachment Unit Interface) as the device port"},
    {"bnc", "Select BNC (Bayonet Neill-Concelman) as the device port"},
    {"mii", "Select MII (Media Independent Interface) as the device port"},
    {"fibre", "Select fibre as the device port"},
    {"da", "Select DA (Direct Attach copper) as the device port"},
    {"backplane", "Select Backplane as the device port"},
};

const long kSpeeds[] = {10,    100,   1000,  2500,  5000,   10000,  20000,
                        25000, 40000, 50000, 56000, 100000, 200000, 400000};

// The wake-on-LAN letters, in the order of their mode numbers.
const std::string kWakeOnLetters = "pumbags";
}  // namespace

NETWORK_COMMAND_NEW(NicSet, Bool)

NicSet::NicSet() { SetDescription("Set the general options for the specified ethernet device."); }

std::shared_ptr<InputSpec> NicSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(Shared::NicName, kConfiguredNicHelp));

  auto port = Optional(kPort, ParameterType::String, "p",
                       "Selects device port. Available device ports are %FULLENUM%");
  auto ports = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  for (auto const& choice : kPorts) ports->AddStringEnum(choice.value, choice.description);
  port->SetConstraint(ports);
  spec->AddParameter(port);

  spec->AddParameter(
      Optional(kPhyAddress, ParameterType::Int, "P", "Set the PHY address of the device"));
  spec->AddParameter(Optional(kVirtualAddress, ParameterType::String, "V",
                              "Set the virtual address of the device"));

  auto transceiver = Optional(
      kTransceiverType, ParameterType::String, "t",
      "Selects transeiver type. Currently only internal and external can be specified, in the "
      "future future types might be added. Available transeiver types are %FULLENUM%");
  auto transceivers = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  transceivers->AddStringEnum(kInternal.c_str(), "Set the transceiver type to internal");
  transceivers->AddStringEnum(kExternal.c_str(), "Set the transceiver type to external");
  transceiver->SetConstraint(transceivers);
  spec->AddParameter(transceiver);

  auto wakeOnLan = Optional(
      kWakeOnLan, ParameterType::String, "w",
      "Sets Wake-on-LAN options. Not all devices support this. The argument to this option is a "
      "string of characters specifying which options to enable. \np Wake on phy activity\nu Wake "
      "on unicast messages\nm Wake on multicast messages\nb Wake on broadcast messages\na Wake "
      "on ARP\ng Wake on MagicPacket(tm)\ns Enable SecureOn(tm) password for MagicPacket(tm)\n");
  auto letters = ParameterConstraint::New(ParameterConstraintType::StringRegex);
  letters->SetStringRegex("[pumbagsd]+");
  wakeOnLan->SetConstraint(letters);
  spec->AddParameter(wakeOnLan);

  spec->AddParameter(Optional(kMessageLevel, ParameterType::Int, "l",
                              "Sets the driver message level. Meaning differ per driver."));

  auto speed = Optional(kSpeed, ParameterType::Int, "S",
                        "The speed to set this NIC to, in Mbps. Acceptable values are :%ENUM%");
  auto speeds = ParameterConstraint::New(ParameterConstraintType::IntEnum);
  for (long value : kSpeeds) speeds->AddIntEnum(value);
  speed->SetConstraint(speeds);
  spec->AddParameter(speed);

  auto duplex = Optional(kDuplex, ParameterType::String, "D",
                         "The duplex to set this NIC to. Acceptable values are :%ENUM%");
  auto duplexes = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  duplexes->AddStringEnum(kFull.c_str(), "Set this nic to full duplex");
  duplexes->AddStringEnum("half", "Set this nic to half duplex");
  duplex->SetConstraint(duplexes);
  spec->AddParameter(duplex);

  spec->AddParameter(Optional(kAuto, ParameterType::Flag, "a",
                              "Set the speed and duplexity settings to autonegotiate."));
  return spec;
}

bool NicSet::GetInfoFromParam(std::shared_ptr<Input> const& input,
                              HostCtl::Network::PnicInfo& info) {
  bool changed = false;
  if (input->HasParameter(kPort)) {
    std::string const& value = input->GetParameter(kPort);
    uint32_t portType = 0;
    for (uint32_t i = 0; i < std::size(kPorts); ++i) {
      if (value == kPorts[i].value) portType = i;
    }
    if (portType != info.port) {
      info.port = portType;
      info.portChanged = true;
      changed = true;
    } else {
      changed = false;
    }
  }
  if (input->HasParameter(kPhyAddress)) {
    long address = input->GetParameterInt(kPhyAddress);
    if (address >= 1) {
      if (static_cast<uint64_t>(address) != info.phyAddress) {
        info.phyAddress = static_cast<uint32_t>(address);
        info.phyAddressChanged = true;
        changed = true;
      }
    } else if (address != -1) {
      throw HostCtl::Lib::HostCtlException("Invalid PHY address value.");
    }
  }
  if (input->HasParameter(kVirtualAddress)) {
    std::string const& address = input->GetParameter(kVirtualAddress);
    if (address != info.virtualAddress) {
      info.virtualAddress = address;
      info.virtualAddressChanged = true;
      changed = true;
    }
  }
  if (input->HasParameter(kTransceiverType)) {
    uint32_t transceiver = input->GetParameter(kTransceiverType) == kExternal ? 1 : 0;
    if (transceiver != info.transceiver) {
      info.transceiver = transceiver;
      info.transceiverChanged = true;
      changed = true;
    }
  }
  if (input->HasParameter(kWakeOnLan)) {
    if (!info.supportsWakeOn) throw HostCtl::Lib::HostCtlException("Not Support wol.");
    changed = true;
    info.wakeOnChanged = true;
    info.wakeOnModes.clear();
    for (char letter : input->GetParameter(kWakeOnLan)) {
      auto mode = kWakeOnLetters.find(letter);
      if (mode == std::string::npos) throw HostCtl::Lib::HostCtlException("Invalid wol value.");
      info.wakeOnModes.push_back(static_cast<HostCtl::Network::WakeOnMode>(mode));
    }
  }
  if (input->HasParameter(kMessageLevel)) {
    long level = input->GetParameterInt(kMessageLevel);
    if (!info.supportsMessageLevel) throw HostCtl::Lib::HostCtlException("Not Support msglvl.");
    if (static_cast<uint32_t>(level) != info.messageLevel) {
      info.messageLevel = static_cast<uint32_t>(level);
      info.messageLevelChanged = true;
      changed = true;
    }
  }
  return changed;
}

void NicSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                             std::shared_ptr<Output> const& output) {
  std::string const& name = input->GetParameter(kNicName);
  bool const hasSpeed = input->HasParameter(kSpeed);
  bool const hasDuplex = input->HasParameter(kDuplex);
  bool const automatic = input->IsFlagSet(kAuto.c_str());
  if (hasSpeed != hasDuplex) {
    output->AddErrorMessage("The --speed and --duplex options must be specified together");
    return;
  }
  if (automatic && hasSpeed) {
    output->AddErrorMessage(
        "The options --speed and --duplex cannot be specified with the --auto option.");
    return;
  }
  bool const linkChange = automatic || hasSpeed;
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = FindNamedPnic(networkInfo, name, *output, MissingPnicWords::NoPnic);
    if (!pnic) return;
    HostCtl::Network::PnicInfo info;
    pnic->GetInfo(info);
    bool const changed = GetInfoFromParam(input, info);
    if (changed) pnic->SetInfo(info);
    if (!changed && !linkChange) {
      output->AddErrorMessage("There is no change for nic " + name);
      return;
    }
    if (linkChange) {
      uint32_t speed = 0;
      int32_t duplex = HostCtl::Network::DUPLEX_AUTO;
      if (!automatic) {
        speed = static_cast<uint32_t>(input->GetParameterInt(kSpeed));
        duplex = input->GetParameter(kDuplex) == kFull ? HostCtl::Network::DUPLEX_FULL
                                                       : HostCtl::Network::DUPLEX_HALF;
      }
      pnic->SetSpeedAndDuplex(speed, duplex);
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
