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
const std::string kOverrideEnabled = "Override Vswitch Enabled";
const std::string kOverrideAverage = "Override Vswitch Average Bandwidth";
const std::string kOverridePeak = "Override Vswitch Peak Bandwidth";
const std::string kOverrideBurst = "Override Vswitch Burst Size";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicyShapingGet)

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
  result->SetField(kOverrideEnabled, MetaBool::New());
  result->SetField(kOverrideAverage, MetaBool::New());
  result->SetField(kOverridePeak, MetaBool::New());
  result->SetField(kOverrideBurst, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicyShapingGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::PortgroupName,
                "The name of the port group to use when fetching the port group shaping policy.")});
}

std::shared_ptr<OutputSpec> VirtualSwitchPortGroupPolicyShapingGet::GetOutputSpecInternal() {
  return RootSpec(GetOutputStructure());
}

void VirtualSwitchPortGroupPolicyShapingGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kPortgroupName);
    auto group = FindPolicyPortGroup(name, *output);
    if (!group) return;
    HostCtl::Network::ShapingPolicy effective = group->GetEffectiveShapingPolicy();
    HostCtl::Network::ShapingPolicy configured = group->GetConfiguredShapingPolicy();
    auto result = GetOutputStructure();
    FillShapingFields(*result, effective);
    using HostCtl::Network::ShapingPolicy;
    uint32_t mask = configured.setMask;
    result->SetField(kOverrideEnabled, (mask & ShapingPolicy::ENABLED_BIT) != 0);
    result->SetField(kOverrideAverage, (mask & ShapingPolicy::AVERAGE_BIT) != 0);
    result->SetField(kOverridePeak, (mask & ShapingPolicy::PEAK_BIT) != 0);
    result->SetField(kOverrideBurst, (mask & ShapingPolicy::BURST_BIT) != 0);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
