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
const std::string kOverrideLoadBalancing = "Override Vswitch Load Balancing";
const std::string kOverrideFailureDetection = "Override Vswitch Network Failure Detection";
const std::string kOverrideNotifySwitches = "Override Vswitch Notify Switches";
const std::string kOverrideFailback = "Override Vswitch Failback";
const std::string kOverrideUplinks = "Override Vswitch Uplinks";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicyFailoverGet)

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
  result->SetField(kOverrideLoadBalancing, MetaBool::New());
  result->SetField(kOverrideFailureDetection, MetaBool::New());
  result->SetField(kOverrideNotifySwitches, MetaBool::New());
  result->SetField(kOverrideFailback, MetaBool::New());
  result->SetField(kOverrideUplinks, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicyFailoverGet::GetInputSpecInternal() {
  return InputSpecOf({Required(
      Shared::PortgroupName,
      "The name of the port group to use when fetching the port group failover policy.")});
}

std::shared_ptr<OutputSpec> VirtualSwitchPortGroupPolicyFailoverGet::GetOutputSpecInternal() {
  return RootSpec(GetOutputStructure());
}

void VirtualSwitchPortGroupPolicyFailoverGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kPortgroupName);
    auto group = FindPolicyPortGroup(name, *output);
    if (!group) return;
    auto vswitch = group->GetVirtualSwitch();
    HostCtl::Network::NicTeamingPolicy effective = group->GetEffectiveTeamingPolicy();
    HostCtl::Network::NicTeamingPolicy configured = group->GetConfiguredTeamingPolicy();
    auto result = GetOutputStructure();
    FillFailoverFields(*result, effective, vswitch->GetConnectedUplinks());
    using HostCtl::Network::NicTeamingPolicy;
    uint32_t mask = configured.setMask;
    result->SetField(kOverrideLoadBalancing, (mask & NicTeamingPolicy::TEAM_POLICY_BIT) != 0);
    result->SetField(kOverrideFailureDetection, (mask & NicTeamingPolicy::LINK_CRITERIA_BIT) != 0);
    result->SetField(kOverrideNotifySwitches, (mask & NicTeamingPolicy::NOTIFY_SWITCH_BIT) != 0);
    result->SetField(kOverrideFailback, (mask & NicTeamingPolicy::ROLLING_RESTORATION_BIT) != 0);
    result->SetField(kOverrideUplinks, (mask & NicTeamingPolicy::UPLINK_ORDER_BIT) != 0);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
