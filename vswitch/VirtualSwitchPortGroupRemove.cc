#include <string>

#include "hostctl/network_info.h"
#include "hostctl/port_group.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupRemove, Bool)

VirtualSwitchPortGroupRemove::VirtualSwitchPortGroupRemove() {
  SetDescription("Remove a port group from the given virtual switch");
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupRemove::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::PortgroupName, " "), Required(Shared::VswitchName, " ")});
}

void VirtualSwitchPortGroupRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                   std::shared_ptr<Output> const& output) {
  try {
    std::string const& portgroupName = input->GetParameter(kPortgroupName);
    std::string const& vswitchName = input->GetParameter(kVswitchName);
    auto vswitch = HostCtl::Network::NetworkFactory::GetVirtualSwitchById(vswitchName);
    vswitch->RemovePortGroup(portgroupName);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
