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

namespace {
const std::string kUseVswitch = "use-vswitch";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicySecuritySet)

VirtualSwitchPortGroupPolicySecuritySet::VirtualSwitchPortGroupPolicySecuritySet() {
  SetDescription("Set the security policy for a given port group");
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicySecuritySet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(
      Required(Shared::PortgroupName, "The name of the port group to set security policy for."));
  spec->AddParameter(Optional(
      kUseVswitch, Flag, "u",
      "Reset all values for this policy to use parent virtual switch's settings instead of "
      "overriding the settings for the port group.   Using this in conjunction with other settings "
      "will first reset all of the fields to use the virtual switch setting and then apply the "
      "other options after the reset."));
  AddSecurityParameters(spec);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchPortGroupPolicySecuritySet::GetOutputSpecInternal() {
  return RootSpec(MetaBool::New());
}

void VirtualSwitchPortGroupPolicySecuritySet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kPortgroupName);
    auto group = FindPolicyPortGroup(name, *output);
    if (!group) return;
    HostCtl::Network::PortSecurityPolicy policy = group->GetConfiguredSecurityPolicy();
    if (input->IsFlagSet(kUseVswitch)) policy.UnsetAll();
    SetSecurityPolicy(input, output, policy);
    if (!output->HasError()) group->ApplySecurityPolicy(policy);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
