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

NETWORK_COMMAND_NEW(VirtualSwitchStandardPolicyShapingGet, Struct)

VirtualSwitchStandardPolicyShapingGet::VirtualSwitchStandardPolicyShapingGet() {
  SetDescription("Get the shaping policy settings for the given virtual switch");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:VirtualSwitchTrafficShapingPolicy",
                            "Enabled,Average Bandwidth,Peak Bandwidth,Burst Size");
  SetDefaultOutputParameter("header:VirtualSwitchTrafficShapingPolicy", "<NONE>");
  SetDefaultOutputParameter("units:VirtualSwitchTrafficShapingPolicy.Average Bandwidth", "Kbps");
  SetDefaultOutputParameter("units:VirtualSwitchTrafficShapingPolicy.Peak Bandwidth", "Kbps");
  SetDefaultOutputParameter("units:VirtualSwitchTrafficShapingPolicy.Burst Size", "Kib");
}

std::shared_ptr<MetaStruct> VirtualSwitchStandardPolicyShapingGet::GetOutputStructure() {
  auto result = MetaStruct::New("VirtualSwitchTrafficShapingPolicy");
  AddShapingFields(*result);
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicyShapingGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::VswitchName,
                "The name of the virtual switch to use when fetching the switch shaping policy.")});
}

void VirtualSwitchStandardPolicyShapingGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                            std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    auto vswitch = FindPolicyStandardSwitch(switchInfo, *input, *output);
    if (!vswitch) return;
    auto result = GetOutputStructure();
    FillShapingFields(*result, vswitch->GetEffectiveShapingPolicy());
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
