#include <string>

#include "hostctl/network_info.h"
#include "hostctl/policy.h"
#include "hostctl/port_group.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/PolicyKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicyShapingSet, Bool)

VirtualSwitchPortGroupPolicyShapingSet::VirtualSwitchPortGroupPolicyShapingSet() {
  SetDescription("Set the shaping policy settings for the given port group");
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicyShapingSet::GetInputSpecInternal() {
  auto spec = PortGroupPolicySpec("The name of the port group to set shaping policy for.");
  AddShapingParameters(spec);
  return spec;
}

void VirtualSwitchPortGroupPolicyShapingSet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    auto group = FindPolicyPortGroup(*input, *output);
    if (!group) return;
    using HostCtl::Network::ShapingPolicy;
    ShapingPolicy policy = group->GetConfiguredShapingPolicy();
    if (UsesVswitchPolicy(*input)) policy.UnsetAll();
    SetShapingPolicy(input, output, policy, false);
    if ((policy.setMask & ShapingPolicy::ENABLED_BIT) != 0 && policy.enabled) {
      // Shaping turned on here needs every value set here or on the switch.
      uint32_t mask = group->GetEffectiveShapingPolicy().setMask | policy.setMask;
      if ((mask & ShapingPolicy::PEAK_BIT) == 0) {
        output->AddErrorMessage(
            "Unable to set shaping policy. A Peak BPS value must be set on either this port group "
            "or on the parent virtual switch.");
      }
      if ((mask & ShapingPolicy::AVERAGE_BIT) == 0) {
        output->AddErrorMessage(
            "Unable to set shaping policy. An Average BPS value must be set on either this port "
            "group or on the parent virtual switch.");
      }
      if ((mask & ShapingPolicy::BURST_BIT) == 0) {
        output->AddErrorMessage(
            "Unable to set shaping policy. A Burst Size value must be set on either this port "
            "group or on the parent virtual switch.");
      }
    }
    if (!output->HasError()) group->ApplyShapingPolicy(policy);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
