#include <string>

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
using HostCtl::Network::NicTeamingPolicy;

// The overrides shown, in the order shown.
const OverrideField kOverrides[] = {
    {"Override Vswitch Load Balancing", NicTeamingPolicy::TEAM_POLICY_BIT},
    {"Override Vswitch Network Failure Detection", NicTeamingPolicy::LINK_CRITERIA_BIT},
    {"Override Vswitch Notify Switches", NicTeamingPolicy::NOTIFY_SWITCH_BIT},
    {"Override Vswitch Failback", NicTeamingPolicy::ROLLING_RESTORATION_BIT},
    {"Override Vswitch Uplinks", NicTeamingPolicy::UPLINK_ORDER_BIT},
};
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicyFailoverGet, Struct)

VirtualSwitchPortGroupPolicyFailoverGet::VirtualSwitchPortGroupPolicyFailoverGet() {
  SetDescription("Get the network failover policy settings governing the given port group");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter(
      "fields:PortGroupFailoverPolicy",
      "Load Balancing,Network Failure Detection,Notify Switches,Failback,Active Adapters,Standby "
      "Adapters,Unused Adapters,Override Vswitch Load Balancing,Override Vswitch Network Failure "
      "Detection,Override Vswitch Notify Switches,Override Vswitch Failback,Override Vswitch "
      "Uplinks");
  SetDefaultOutputParameter("header:PortGroupFailoverPolicy", "<NONE>");
}

std::shared_ptr<MetaStruct> VirtualSwitchPortGroupPolicyFailoverGet::GetOutputStructure() {
  auto result = MetaStruct::New("PortGroupFailoverPolicy");
  AddFailoverFields(*result);
  AddOverrideFields(*result, kOverrides);
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicyFailoverGet::GetInputSpecInternal() {
  return InputSpecOf({Required(
      Shared::PortgroupName,
      "The name of the port group to use when fetching the port group failover policy.")});
}

void VirtualSwitchPortGroupPolicyFailoverGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    auto group = FindPolicyPortGroup(*input, *output);
    if (!group) return;
    auto vswitch = group->GetVirtualSwitch();
    NicTeamingPolicy effective = group->GetEffectiveTeamingPolicy();
    NicTeamingPolicy configured = group->GetConfiguredTeamingPolicy();
    auto result = GetOutputStructure();
    FillFailoverFields(*result, effective, vswitch->GetConnectedUplinks());
    FillOverrideFields(*result, kOverrides, configured.setMask);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
