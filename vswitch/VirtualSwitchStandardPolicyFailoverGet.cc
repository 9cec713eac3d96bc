#include "vswitch/VirtualSwitchStandardPolicyFailoverGet.h"

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

std::shared_ptr<VirtualSwitchStandardPolicyFailoverGet>
VirtualSwitchStandardPolicyFailoverGet::New() {
  return std::shared_ptr<VirtualSwitchStandardPolicyFailoverGet>(
      new VirtualSwitchStandardPolicyFailoverGet());
}

VirtualSwitchStandardPolicyFailoverGet::VirtualSwitchStandardPolicyFailoverGet() {
  SetDescription("Get the failover policy settings governing the given virtual switch");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:VirtualSwitchFailoverPolicy",
                            "Load Balancing,Network Failure Detection,Notify "
                            "Switches,Failback,Active Adapters,Standby Adapters,Unused Adapters");
  SetDefaultOutputParameter("header:VirtualSwitchFailoverPolicy", "<NONE>");
}

VirtualSwitchStandardPolicyFailoverGet::~VirtualSwitchStandardPolicyFailoverGet() = default;

std::shared_ptr<MetaStruct> VirtualSwitchStandardPolicyFailoverGet::GetOutputStructure() {
  auto result = MetaStruct::New("VirtualSwitchFailoverPolicy");
  AddFailoverFields(*result);
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicyFailoverGet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto name = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  name->SetRequired(true);
  name->SetShortName("v");
  name->SetDescription(
      "The name of the virtual switch to use when fetching the switch failover policy.");
  spec->AddParameter(name);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchStandardPolicyFailoverGet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(GetOutputStructure());
  return spec;
}

void VirtualSwitchStandardPolicyFailoverGet::ExecuteInternal(
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
    FillFailoverFields(*result, vswitch->GetEffectiveTeamingPolicy(),
                       vswitch->GetConnectedUplinks());
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
