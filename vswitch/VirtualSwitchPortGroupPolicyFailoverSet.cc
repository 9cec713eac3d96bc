#include <string>
#include <vector>

#include "hostctl/network_info.h"
#include "hostctl/policy.h"
#include "hostctl/port_group.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/PolicyKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicyFailoverSet, Bool)

VirtualSwitchPortGroupPolicyFailoverSet::VirtualSwitchPortGroupPolicyFailoverSet() {
  SetDescription(
      "Configure the Failover policy for a port group. These setting may potentially override "
      "virtual switch settings.");
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicyFailoverSet::GetInputSpecInternal() {
  auto spec = PortGroupPolicySpec("The name of the port group to set failover policy for.");
  AddFailoverParameters(spec);
  return spec;
}

void VirtualSwitchPortGroupPolicyFailoverSet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    auto group = FindPolicyPortGroup(*input, *output);
    if (!group) return;
    HostCtl::Network::NicTeamingPolicy current = group->GetEffectiveTeamingPolicy();
    HostCtl::Network::NicTeamingPolicy target = group->GetConfiguredTeamingPolicy();
    std::vector<std::string> uplinks = group->GetVirtualSwitch()->GetConnectedUplinks();
    if (UsesVswitchPolicy(*input)) target.UnsetAll();
    SetFailoverPolicy(input, output, target, current, uplinks);
    if (!output->HasError()) group->ApplyTeamingPolicy(target);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
