#include "vswitch/VirtualSwitchStandardPolicySecurityGet.h"

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

std::shared_ptr<VirtualSwitchStandardPolicySecurityGet>
VirtualSwitchStandardPolicySecurityGet::New() {
  return std::shared_ptr<VirtualSwitchStandardPolicySecurityGet>(
      new VirtualSwitchStandardPolicySecurityGet());
}

VirtualSwitchStandardPolicySecurityGet::VirtualSwitchStandardPolicySecurityGet() {
  SetDescription("Get the Security Policy governing the given virtual switch.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:VirtualSwitchSecurityPolicy",
                            "Allow Promiscuous,Allow MAC Address Change,Allow Forged Transmits");
  SetDefaultOutputParameter("header:VirtualSwitchSecurityPolicy", "<NONE>");
}

VirtualSwitchStandardPolicySecurityGet::~VirtualSwitchStandardPolicySecurityGet() = default;

std::shared_ptr<MetaStruct> VirtualSwitchStandardPolicySecurityGet::GetOutputStructure() {
  auto result = MetaStruct::New("VirtualSwitchSecurityPolicy");
  AddSecurityFields(*result);
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicySecurityGet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto name = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  name->SetRequired(true);
  name->SetShortName("v");
  name->SetDescription(
      "The name of the virtual switch to use when fetching the network security policy.");
  spec->AddParameter(name);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchStandardPolicySecurityGet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(GetOutputStructure());
  return spec;
}

void VirtualSwitchStandardPolicySecurityGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
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
    FillSecurityFields(*result, vswitch->GetEffectiveSecurityPolicy());
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
