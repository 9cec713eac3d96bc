#include <string>
#include <vector>

#include "hostctl/policy.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/PolicyKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(VirtualSwitchStandardPolicyFailoverSet, Bool)

VirtualSwitchStandardPolicyFailoverSet::VirtualSwitchStandardPolicyFailoverSet() {
  SetDescription("Configure the Failover policy for a virtual switch.");
}

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicyFailoverSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(
      Shared::VswitchName,
      "The name of the virtual switch to use when configuring the switch failover policy."));
  AddFailoverParameters(spec);
  return spec;
}

void VirtualSwitchStandardPolicyFailoverSet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    auto vswitch = FindPolicyStandardSwitch(switchInfo, *input, *output);
    if (!vswitch) return;
    HostCtl::Network::NicTeamingPolicy current = vswitch->GetEffectiveTeamingPolicy();
    HostCtl::Network::NicTeamingPolicy target = vswitch->GetConfiguredTeamingPolicy();
    std::vector<std::string> uplinks = vswitch->GetConnectedUplinks();
    SetFailoverPolicy(input, output, target, current, uplinks);
    if (!output->HasError()) vswitch->ApplyTeamingPolicy(target);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
