#include "vswitch/VirtualSwitchStandardPolicyShapingGet.h"

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

std::shared_ptr<VirtualSwitchStandardPolicyShapingGet>
VirtualSwitchStandardPolicyShapingGet::New() {
  return std::shared_ptr<VirtualSwitchStandardPolicyShapingGet>(
      new VirtualSwitchStandardPolicyShapingGet());
}

VirtualSwitchStandardPolicyShapingGet::VirtualSwitchStandardPolicyShapingGet() {
  SetDescription("Get the shaping policy settings for the given virtual switch");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:VirtualSwitchTrafficShapingPolicy",
                            "Enabled,Average Bandwidth,Peak Bandwidth,Burst Size");
  SetDefaultOutputParameter("header:VirtualSwitchTrafficShapingPolicy", "<NONE>");
  SetDefaultOutputParameter("units:VirtualSwitchTrafficShapingPolicy.Average Bandwidth", "Kbps");
  SetDefaultOutputParameter("units:VirtualSwitchTrafficShapingPolicy.Peak Bandwidth", "Kbps");
  SetDefaultOutputParameter("units:VirtualSwitchTrafficShapingPolicy.Burst Size", "Kib");
}

VirtualSwitchStandardPolicyShapingGet::~VirtualSwitchStandardPolicyShapingGet() = default;

std::shared_ptr<MetaStruct> VirtualSwitchStandardPolicyShapingGet::GetOutputStructure() {
  auto result = MetaStruct::New("VirtualSwitchTrafficShapingPolicy");
  AddShapingFields(*result);
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicyShapingGet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto name = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  name->SetRequired(true);
  name->SetShortName("v");
  name->SetDescription(
      "The name of the virtual switch to use when fetching the switch shaping policy.");
  spec->AddParameter(name);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchStandardPolicyShapingGet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(GetOutputStructure());
  return spec;
}

void VirtualSwitchStandardPolicyShapingGet::ExecuteInternal(std::shared_ptr<Input> const& input,
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
    auto result = GetOutputStructure();
    FillShapingFields(*result, vswitch->GetEffectiveShapingPolicy());
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
