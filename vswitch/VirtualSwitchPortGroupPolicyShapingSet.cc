#include "vswitch/VirtualSwitchPortGroupPolicyShapingSet.h"

#include <string>

#include "hostctl/network_info.h"
#include "hostctl/policy.h"
#include "hostctl/port_group.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/PolicyKit.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kPortgroupName = "portgroup-name";
const std::string kUseVswitch = "use-vswitch";
const std::string kNotFound = "Unable to find a port group with the name ";
}  // namespace

std::shared_ptr<VirtualSwitchPortGroupPolicyShapingSet>
VirtualSwitchPortGroupPolicyShapingSet::New() {
  return std::shared_ptr<VirtualSwitchPortGroupPolicyShapingSet>(
      new VirtualSwitchPortGroupPolicyShapingSet());
}

VirtualSwitchPortGroupPolicyShapingSet::VirtualSwitchPortGroupPolicyShapingSet() {
  SetDescription("Set the shaping policy settings for the given port group");
}

VirtualSwitchPortGroupPolicyShapingSet::~VirtualSwitchPortGroupPolicyShapingSet() = default;

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicyShapingSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto name = ParameterSpec::New(kPortgroupName, Toolbase::CallSpec::String);
  name->SetRequired(true);
  name->SetShortName("p");
  name->SetDescription("The name of the port group to set shaping policy for.");
  spec->AddParameter(name);
  auto useVswitch = ParameterSpec::New(kUseVswitch, Flag);
  useVswitch->SetRequired(false);
  useVswitch->SetShortName("u");
  useVswitch->SetDescription(
      "Reset all values for this policy to use parent virtual switch's settings instead of "
      "overriding the settings for the port group. Using this in conjunction with other settings "
      "will first reset all of the fields to use the virtual switch setting and then apply the "
      "other options after the reset.");
  spec->AddParameter(useVswitch);
  AddShapingParameters(spec);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchPortGroupPolicyShapingSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void VirtualSwitchPortGroupPolicyShapingSet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kPortgroupName);
    auto group = HostCtl::Network::NetworkFactory::GetPortGroupByName(name);
    if (!group) {
      output->AddErrorMessage(kNotFound + name);
      return;
    }
    using HostCtl::Network::ShapingPolicy;
    ShapingPolicy policy = group->GetConfiguredShapingPolicy();
    if (input->IsFlagSet(kUseVswitch)) policy.UnsetAll();
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
