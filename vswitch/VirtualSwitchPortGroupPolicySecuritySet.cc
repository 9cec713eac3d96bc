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

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicySecuritySet, Bool)

VirtualSwitchPortGroupPolicySecuritySet::VirtualSwitchPortGroupPolicySecuritySet() {
  SetDescription("Set the security policy for a given port group");
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicySecuritySet::GetInputSpecInternal() {
  auto spec = PortGroupPolicySpec("The name of the port group to set security policy for.", "   ");
  AddSecurityParameters(spec);
  return spec;
}

void VirtualSwitchPortGroupPolicySecuritySet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    auto group = FindPolicyPortGroup(*input, *output);
    if (!group) return;
    HostCtl::Network::PortSecurityPolicy policy = group->GetConfiguredSecurityPolicy();
    if (UsesVswitchPolicy(*input)) policy.UnsetAll();
    SetSecurityPolicy(input, output, policy);
    if (!output->HasError()) group->ApplySecurityPolicy(policy);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
