#include "vswitch/VirtualSwitchStandardPolicyShapingSet.h"

#include <string>

#include "hostctl/policy.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/PolicyKit.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kVswitchName = "vswitch-name";
const std::string kNotFound = "Unable to find a legacy virtual switch with the name ";
}  // namespace

std::shared_ptr<VirtualSwitchStandardPolicyShapingSet>
VirtualSwitchStandardPolicyShapingSet::New() {
  return std::shared_ptr<VirtualSwitchStandardPolicyShapingSet>(
      new VirtualSwitchStandardPolicyShapingSet());
}

VirtualSwitchStandardPolicyShapingSet::VirtualSwitchStandardPolicyShapingSet() {
  SetDescription("Set the shaping policy settings for the given virtual switch");
}

VirtualSwitchStandardPolicyShapingSet::~VirtualSwitchStandardPolicyShapingSet() = default;

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicyShapingSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto name = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  name->SetRequired(true);
  name->SetShortName("v");
  name->SetDescription(
      "The name of the virtual switch to use when setting the switch shaping policy.");
  spec->AddParameter(name);
  AddShapingParameters(spec);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchStandardPolicyShapingSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void VirtualSwitchStandardPolicyShapingSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                            std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    std::string const& name = input->GetParameter(kVswitchName);
    if (!OrvkCtl::Network::PortsetImpl::IsValidVirtualSwitch(name)) {
      output->AddErrorMessage(kNotFound + name);
      return;
    }
    auto vswitch = switchInfo.GetVirtualSwitchByName(name);
    if (!vswitch) {
      output->AddErrorMessage(kNotFound + name);
      return;
    }
    HostCtl::Network::ShapingPolicy policy = vswitch->GetEffectiveShapingPolicy();
    SetShapingPolicy(input, output, policy, false);
    if (!output->HasError()) vswitch->ApplyShapingPolicy(policy);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
