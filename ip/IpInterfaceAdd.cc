#include <cstdint>
#include <string>

#include "hostctl/netstack.h"
#include "hostctl/network_info.h"
#include "hostctl/network_types.h"
#include "hostctl/orvk_nic.h"
#include "hostctl/util.h"
#include "ip/IpCommands.h"
#include "ip/IpInterfaceCommon.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;
using HostCtl::Network::OrvkNicTagType;

namespace {
const std::string kDvsName = "dvs-name";
const std::string kDvportId = "dvport-id";
const std::string kMtu = "mtu";
const std::string kNumRxqueue = "num-rxqueue";
const std::string kMacAddress = "mac-address";
const std::string kInterfaceNameRegex = "orvk([0-9]|[1-9][0-9]|1[0-9][0-9]|2[0-4][0-9]|25[0-5])";
const std::string kProvisioningNetstack = "TamariskProvisioning";

// The netstack instances dedicated to one service, and the service's tag.
struct DedicatedNetstack {
  char const* key;
  int tag;
};
const DedicatedNetstack kDedicatedNetstacks[] = {
    {"livehop", 2},
    {"faultTolerance", 3},
    {"TamariskProvisioning", 6},
};
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceAdd, Bool)

IpInterfaceAdd::IpInterfaceAdd() { SetDescription("Add a new Orvik network interface."); }

std::shared_ptr<InputSpec> IpInterfaceAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(NewNetstackParameter(NetstackScope::UseDefault));
  spec->AddParameter(
      Optional(Shared::PortgroupName,
               "The name of the vswitch port group to add this Orvik network interface to."));
  spec->AddParameter(Optional(
      kDvsName, ParameterType::String, "s",
      "DVSwitch name of the connection point. This requires --dvport-id to be given in the same "
      "command"));
  spec->AddParameter(Optional(
      kDvportId, ParameterType::String, "P",
      "DVPort ID of the connection point. This requires --dvs-name to be given in the same "
      "command"));
  auto mtu = Optional(kMtu, ParameterType::Int, "m",
                      "Set the MTU setting for a given Orvik network interface on creation");
  auto mtuRange = ParameterConstraint::New(ParameterConstraintType::IntRange);
  mtuRange->SetIntRange(HostCtl::Network::OrvkNic::MIN_MTU, HostCtl::Network::OrvkNic::MAX_MTU);
  mtu->SetConstraint(mtuRange);
  spec->AddParameter(mtu);
  auto rxqueue = Optional(
      kNumRxqueue, ParameterType::Int, "R",
      "Set the number of RX dispatch queues for a given Orvik network interface on creation");
  auto rxqueueRange = ParameterConstraint::New(ParameterConstraintType::IntRange);
  rxqueueRange->SetIntRange(1, 1000);
  rxqueue->SetConstraint(rxqueueRange);
  spec->AddParameter(rxqueue);
  spec->AddParameter(
      Optional(kMacAddress, ParameterType::String, "M",
               "Set the MAC address for the newly created Orvik network interface."));
  auto name = Optional(
      Shared::InterfaceName,
      "The name of the Orvik network interface to create. This name must be in the form orvkX, "
      "where X is a number 0-255");
  auto nameRegex = ParameterConstraint::New(ParameterConstraintType::StringRegex);
  nameRegex->SetStringRegex(kInterfaceNameRegex);
  name->SetConstraint(nameRegex);
  spec->AddParameter(name);
  return spec;
}

void IpInterfaceAdd::MoveTag(HostCtl::Network::OrvkNic& nic, int tag) {
  OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
  nic.AddTag(static_cast<OrvkNicTagType>(tag), false);
  for (auto const& tagged : nicInfo.GetOrvikNicsByTag(static_cast<OrvkNicTagType>(tag))) {
    if (tagged->GetNetstackInstanceKey() == kDefaultNetstackKey) {
      tagged->RemoveTag(static_cast<OrvkNicTagType>(tag));
    }
  }
}

void IpInterfaceAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  if (input->HasParameter(kNetstack)) {
    std::string const& key = input->GetParameter(kNetstack);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    bool found = false;
    for (auto const& instance : networkInfo.ListNetstackInstances()) {
      if (instance->GetInstanceKey() == key) {
        found = true;
        break;
      }
    }
    if (!found) {
      output->AddErrorMessage("The netstack " + key + " does not exist.");
      return;
    }
  }

  if (!CheckConnectionParameters(*input, *output)) return;

  HostCtl::Network::MacAddress mac;
  if (input->HasParameter(kMacAddress)) {
    std::string const& text = input->GetParameter(kMacAddress);
    if (!HostCtl::Network::MacAddress::IsValid(text)) {
      output->AddErrorMessage("Invalid unicast MAC address specified.");
      return;
    }
    mac = HostCtl::Network::MacAddress(text);
  }
  // The framework holds both to their ranges, which fit 32 bits.
  uint32_t const mtu =
      input->HasParameter(kMtu) ? static_cast<uint32_t>(input->GetParameterInt(kMtu)) : 0;
  uint32_t const rxqueue = input->HasParameter(kNumRxqueue)
                               ? static_cast<uint32_t>(input->GetParameterInt(kNumRxqueue))
                               : 0;

  // Built last of all checks: a DVPort may be given a connection id here.
  std::unique_ptr<HostCtl::Network::ConnectionPoint> point = BuildConnectionPoint(*input, *output);
  if (!point) return;
  std::string const name = OptionalText(*input, kInterfaceName);

  try {
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    HostCtl::Network::IpConfig config;
    std::string const key = NetstackOrDefault(*input);
    auto nic = nicInfo.AddOrvikNic(point.get(), key, config, mac, 0, mtu, rxqueue, name, false);
    for (auto const& dedicated : kDedicatedNetstacks) {
      if (key == dedicated.key) {
        MoveTag(*nic, dedicated.tag);
        break;
      }
    }
    if (key == kProvisioningNetstack) {
      std::string const line =
          "/etc/init.d/xfrd " + OrvkCtl::Util::MakeChildRpOrvkOption(12) + " restart";
      if (OrvkCtl::Util::OrvkCtl_Exec(line, false, true, false) != 0) {
        output->AddErrorMessage(
            "Unable to start the XFR daemon. Take a look at /var/log/xfrd.log for more "
            "information.");
      }
    }
    config.SetUseIpv6RouterAdvertised(true);
    nic->SetIpConfig(config);
    nic->Commit();
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to add Orvik network interface. Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
