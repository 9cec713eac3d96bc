#include <string>

#include "hostctl/network_types.h"
#include "hostctl/orvk_nic.h"
#include "ip/IpCommands.h"
#include "ip/IpInterfaceCommon.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kDvsName = "dvs-name";
const std::string kDvportId = "dvport-id";
const std::string kNotUnique =
    "Please correctly and uniquely specify a way to remove it. A Orvik network interface can be "
    "uniquely specified by --interface-name or --portgroup-name or --dvs-name/--dvport-id. i.e. "
    "Providing its name or its connection point are two ways to uniquely specify a Orvik network "
    "interface.";
const std::string kRemoveFailed = "Unable to remove Orvik network interface. Error was : ";
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceRemove, Bool)

IpInterfaceRemove::IpInterfaceRemove() {
  SetDescription(
      "Remove a Orvik network interface from the Haldeni host. A Orvik network interface can be "
      "uniquely specified by --interface-name or --portgroup-name or --dvs-name/--dvport-id. i.e. "
      "Providing its name or its connection point are two ways to uniquely specify a Orvik "
      "network interface.");
}

std::shared_ptr<InputSpec> IpInterfaceRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(NewNetstackParameter(NetstackScope::UseDefault));
  spec->AddParameter(
      Optional(Shared::PortgroupName,
               "The name of the vswitch port group to delete this Orvik network interface from."));
  spec->AddParameter(Optional(
      kDvsName, ParameterType::String, "s",
      "DVSwitch name of the connection point. This requires --dvport-id to be given in the same "
      "command"));
  spec->AddParameter(Optional(
      kDvportId, ParameterType::String, "P",
      "DVPort ID of the connection point. This requires --dvs-name to be given in the same "
      "command"));
  auto name = Optional(
      Shared::InterfaceName,
      "The name of the Orvik network interface to remove. This name must be in the form orvkX, "
      "where X is a number 0-255");
  auto nameRegex = ParameterConstraint::New(ParameterConstraintType::StringRegex);
  nameRegex->SetStringRegex("orvk([0-9]|[1-9][0-9]|1[0-9][0-9]|2[0-4][0-9]|25[0-5])");
  name->SetConstraint(nameRegex);
  spec->AddParameter(name);
  return spec;
}

void IpInterfaceRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  bool const byName = input->HasParameter(kInterfaceName);
  bool const portgroup = input->HasParameter(kPortgroupName);
  bool const dvs = input->HasParameter(kDvsName);
  bool const dvport = input->HasParameter(kDvportId);
  if ((portgroup || dvs) && byName) {
    output->AddErrorMessage(kNotUnique);
    return;
  }
  if (!portgroup && !dvs) {
    if (byName == dvport) {
      output->AddErrorMessage(kNotUnique);
      return;
    }
    if (byName) {
      std::string const& name = input->GetParameter(kInterfaceName);
      try {
        OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
        for (auto const& nic : nicInfo.GetOrvikNics()) {
          if (nic->GetInterfaceName() == name) {
            nic->Remove();
            output->SetRootObject(MetaBool::New(true));
            return;
          }
        }
        output->AddErrorMessage("Unable to find Orvik network interface with the name " + name);
        output->SetRootObject(MetaBool::New(false));
      } catch (HostCtl::Lib::HostCtlException const& e) {
        output->AddErrorMessage(kRemoveFailed + e.message);
      }
      return;
    }
  }

  std::unique_ptr<HostCtl::Network::ConnectionPoint> point = BuildConnectionPoint(*input, *output);
  if (!point) return;
  try {
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    nicInfo.RemoveOrvikNic(point.get(), NetstackOrDefault(*input));
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(kRemoveFailed + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
