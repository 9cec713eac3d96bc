#include <string>

#include "hostctl/network_info.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kUplinkName = "uplink-name";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchStandardUplinkRemove)

VirtualSwitchStandardUplinkRemove::VirtualSwitchStandardUplinkRemove() {
  SetDescription(
      "Remove an uplink from the given virtual switch. Note if this virtual switch has a NIC "
      "teaming policy assigned to it then the policy must also be modified to disable use of this "
      "uplink on this virtual switch");
}

std::shared_ptr<InputSpec> VirtualSwitchStandardUplinkRemove::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::VswitchName, "The name of the virtual switch to remove an uplink from."),
       Required(kUplinkName, Toolbase::CallSpec::String, "u",
                "The name of the uplink to remove from the virtual switch.")});
}

std::shared_ptr<OutputSpec> VirtualSwitchStandardUplinkRemove::GetOutputSpecInternal() {
  return RootSpec(MetaBool::New());
}

void VirtualSwitchStandardUplinkRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                        std::shared_ptr<Output> const& output) {
  try {
    std::string const& vswitchName = input->GetParameter(kVswitchName);
    std::string const& uplink = input->GetParameter(kUplinkName);
    auto vswitch = HostCtl::Network::NetworkFactory::GetVirtualSwitchById(vswitchName);
    // A switch the factory does not hand out is left alone, silently.
    if (vswitch) vswitch->RemoveUplink(uplink, false);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
