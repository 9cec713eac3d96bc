#include <string>

#include "hostctl/orvk_nic.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kEnabled = "enabled";
const std::string kMtu = "mtu";
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceSet, Bool)

IpInterfaceSet::IpInterfaceSet() {
  SetDescription("This command sets the enabled status and MTU size of a given IP interface ");
}

std::shared_ptr<InputSpec> IpInterfaceSet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::InterfaceName, "The name of the interface to apply the configurations."),
       Optional(kEnabled, ParameterType::Bool, "e",
                "Set to true to enable the interface, set to false to disable it."),
       Optional(kMtu, ParameterType::Int, "m", "The MTU size of the IP interface. ")});
}

void IpInterfaceSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kInterfaceName);
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    auto nics = nicInfo.GetOrvikNics();
    HostCtl::Network::OrvkNic* target = nullptr;
    for (auto const& nic : nics) {
      if (nic->GetInterfaceName() == name) {
        target = nic.get();
        break;
      }
    }
    if (!target) {
      output->AddErrorMessage("Unable to find an interface with name " + name);
      return;
    }
    if (input->HasParameter(kEnabled)) {
      if (input->GetParameterBool(kEnabled)) {
        target->Enable();
      } else {
        target->Disable();
      }
    }
    if (input->HasParameter(kMtu)) {
      long const mtu = input->GetParameterInt(kMtu);
      if (mtu < 0) {
        output->AddErrorMessage("MTU size should be a positive value");
        return;
      }
      target->SetMtu(static_cast<uint32_t>(mtu));
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
