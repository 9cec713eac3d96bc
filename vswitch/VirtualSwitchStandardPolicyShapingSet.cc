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

NETWORK_COMMAND_NEW(VirtualSwitchStandardPolicyShapingSet, Bool)

VirtualSwitchStandardPolicyShapingSet::VirtualSwitchStandardPolicyShapingSet() {
  SetDescription("Set the shaping policy settings for the given virtual switch");
}

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicyShapingSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(
      Required(Shared::VswitchName,
               "The name of the virtual switch to use when setting the switch shaping policy."));
  AddShapingParameters(spec);
  return spec;
}

void VirtualSwitchStandardPolicyShapingSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                            std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    auto vswitch = FindPolicyStandardSwitch(switchInfo, *input, *output);
    if (!vswitch) return;
    HostCtl::Network::ShapingPolicy policy = vswitch->GetEffectiveShapingPolicy();
    SetShapingPolicy(input, output, policy, false);
    if (!output->HasError()) vswitch->ApplyShapingPolicy(policy);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
