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

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupAdd, Bool)

VirtualSwitchPortGroupAdd::VirtualSwitchPortGroupAdd() {
  SetDescription("Allows the addition of a standard port group to a virtual switch.");
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupAdd::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::PortgroupName, "The name of the port group to add"),
       Required(Shared::VswitchName, "The virtual switch to add the port group to.")});
}

void VirtualSwitchPortGroupAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                std::shared_ptr<Output> const& output) {
  try {
    std::string const& portgroupName = input->GetParameter(kPortgroupName);
    std::string const& vswitchName = input->GetParameter(kVswitchName);
    auto vswitch = HostCtl::Network::NetworkFactory::GetVirtualSwitchById(vswitchName);
    vswitch->AddPortGroup(portgroupName);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
