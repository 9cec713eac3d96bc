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
using HostCtl::Network::ShapingPolicy;

// The overrides shown, in the order shown.
const OverrideField kOverrides[] = {
    {"Override Vswitch Enabled", ShapingPolicy::ENABLED_BIT},
    {"Override Vswitch Average Bandwidth", ShapingPolicy::AVERAGE_BIT},
    {"Override Vswitch Peak Bandwidth", ShapingPolicy::PEAK_BIT},
    {"Override Vswitch Burst Size", ShapingPolicy::BURST_BIT},
};
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicyShapingGet, Struct)

VirtualSwitchPortGroupPolicyShapingGet::VirtualSwitchPortGroupPolicyShapingGet() {
  SetDescription("Get the network shaping policy settings governing the given port group");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter(
      "fields:PortGroupTrafficShapingPolicy",
      "Enabled,Average Bandwidth,Peak Bandwidth,Burst Size,Override Vswitch Enabled,Override "
      "Vswitch Average Bandwidth,Override Vswitch Peak Bandwidth,Override Vswitch Burst Size");
  SetDefaultOutputParameter("header:PortGroupTrafficShapingPolicy", "<NONE>");
  SetDefaultOutputParameter("units:PortGroupTrafficShapingPolicy.Average Bandwidth", "Kbps");
  SetDefaultOutputParameter("units:PortGroupTrafficShapingPolicy.Peak Bandwidth", "Kbps");
  SetDefaultOutputParameter("units:PortGroupTrafficShapingPolicy.Burst Size", "Kib");
}

std::shared_ptr<MetaStruct> VirtualSwitchPortGroupPolicyShapingGet::GetOutputStructure() {
  auto result = MetaStruct::New("PortGroupTrafficShapingPolicy");
  AddShapingFields(*result);
  AddOverrideFields(*result, kOverrides);
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicyShapingGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::PortgroupName,
                "The name of the port group to use when fetching the port group shaping policy.")});
}

void VirtualSwitchPortGroupPolicyShapingGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    auto group = FindPolicyPortGroup(*input, *output);
    if (!group) return;
    ShapingPolicy effective = group->GetEffectiveShapingPolicy();
    ShapingPolicy configured = group->GetConfiguredShapingPolicy();
    auto result = GetOutputStructure();
    FillShapingFields(*result, effective);
    FillOverrideFields(*result, kOverrides, configured.setMask);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
