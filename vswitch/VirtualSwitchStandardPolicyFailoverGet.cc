#include <string>

#include "hostctl/policy.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/PolicyKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(VirtualSwitchStandardPolicyFailoverGet, Struct)

VirtualSwitchStandardPolicyFailoverGet::VirtualSwitchStandardPolicyFailoverGet() {
  SetDescription("Get the failover policy settings governing the given virtual switch");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:VirtualSwitchFailoverPolicy",
                            "Load Balancing,Network Failure Detection,Notify "
                            "Switches,Failback,Active Adapters,Standby Adapters,Unused Adapters");
  SetDefaultOutputParameter("header:VirtualSwitchFailoverPolicy", "<NONE>");
}

std::shared_ptr<MetaStruct> VirtualSwitchStandardPolicyFailoverGet::GetOutputStructure() {
  auto result = MetaStruct::New("VirtualSwitchFailoverPolicy");
  AddFailoverFields(*result);
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicyFailoverGet::GetInputSpecInternal() {
  return InputSpecOf({Required(
      Shared::VswitchName,
      "The name of the virtual switch to use when fetching the switch failover policy.")});
}

void VirtualSwitchStandardPolicyFailoverGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    auto vswitch = FindPolicyStandardSwitch(switchInfo, *input, *output);
    if (!vswitch) return;
    auto result = GetOutputStructure();
    FillFailoverFields(*result, vswitch->GetEffectiveTeamingPolicy(),
                       vswitch->GetConnectedUplinks());
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
