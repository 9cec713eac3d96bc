#include <sstream>
#include <string>

#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(VirtualSwitchStandardRemove, Bool)

VirtualSwitchStandardRemove::VirtualSwitchStandardRemove() {
  SetDescription("Remove a virtual switch from the Haldeni networking system.");
}

std::shared_ptr<InputSpec> VirtualSwitchStandardRemove::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::VswitchName, "The name of the virtual switch to remove.")});
}

void VirtualSwitchStandardRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                  std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    std::string const& name = input->GetParameter(kVswitchName);
    if (!OrvkCtl::Network::PortsetImpl::IsValidVirtualSwitch(name)) {
      std::ostringstream message;
      message << "Unable to find virtual switch with the name " << name;
      output->AddErrorMessage(message.str());
      return;
    }
    switchInfo.RemoveVirtualSwitch(name);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
