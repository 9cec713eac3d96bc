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

namespace {
const std::string kUseVswitch = "use-vswitch";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicyFailoverSet)

VirtualSwitchPortGroupPolicyFailoverSet::VirtualSwitchPortGroupPolicyFailoverSet() {
  SetDescription(
      "Configure the Failover policy for a port group. These setting may potentially override "
      "virtual switch settings.");
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicyFailoverSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(
      Required(Shared::PortgroupName, "The name of the port group to set failover policy for."));
  spec->AddParameter(Optional(
      kUseVswitch, Flag, "u",
      "Reset all values for this policy to use parent virtual switch's settings instead of "
      "overriding the settings for the port group. Using this in conjunction with other settings "
      "will first reset all of the fields to use the virtual switch setting and then apply the "
      "other options after the reset."));
  AddFailoverParameters(spec);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchPortGroupPolicyFailoverSet::GetOutputSpecInternal() {
  return RootSpec(MetaBool::New());
}

void VirtualSwitchPortGroupPolicyFailoverSet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kPortgroupName);
    auto group = FindPolicyPortGroup(name, *output);
    if (!group) return;
    HostCtl::Network::NicTeamingPolicy current = group->GetEffectiveTeamingPolicy();
    HostCtl::Network::NicTeamingPolicy target = group->GetConfiguredTeamingPolicy();
    std::vector<std::string> uplinks = group->GetVirtualSwitch()->GetConnectedUplinks();
    if (input->IsFlagSet(kUseVswitch)) target.UnsetAll();
    SetFailoverPolicy(input, output, target, current, uplinks);
    if (!output->HasError()) group->ApplyTeamingPolicy(target);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
