#include <string>

#include "hostctl/lib.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/UplinkKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(VirtualSwitchStandardUplinkAdd, Bool)

VirtualSwitchStandardUplinkAdd::VirtualSwitchStandardUplinkAdd() {
  SetDescription(
      "Add an uplink to the given virtual switch. Note if this virtual switch has a NIC teaming "
      "policy assigned to it then the policy must also be modified to enable use of this uplink on "
      "this virtual switch");
}

std::shared_ptr<InputSpec> VirtualSwitchStandardUplinkAdd::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::VswitchName, "The name of the virtual switch to add an uplink to."),
       UplinkNameParameter("The name of the uplink to add to the virtual switch.")});
}

void VirtualSwitchStandardUplinkAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                     std::shared_ptr<Output> const& output) {
  try {
    ChangeUplink(*input, *output, UplinkChange::Add);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
