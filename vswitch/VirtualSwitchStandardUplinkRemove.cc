#include <string>

#include "hostctl/lib.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/UplinkKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(VirtualSwitchStandardUplinkRemove, Bool)

VirtualSwitchStandardUplinkRemove::VirtualSwitchStandardUplinkRemove() {
  SetDescription(
      "Remove an uplink from the given virtual switch. Note if this virtual switch has a NIC "
      "teaming policy assigned to it then the policy must also be modified to disable use of this "
      "uplink on this virtual switch");
}

std::shared_ptr<InputSpec> VirtualSwitchStandardUplinkRemove::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::VswitchName, "The name of the virtual switch to remove an uplink from."),
       UplinkNameParameter("The name of the uplink to remove from the virtual switch.")});
}

void VirtualSwitchStandardUplinkRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                        std::shared_ptr<Output> const& output) {
  try {
    ChangeUplink(*input, *output, UplinkChange::Remove);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
