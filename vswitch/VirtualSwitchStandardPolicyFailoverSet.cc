#include "vswitch/VirtualSwitchStandardPolicyFailoverSet.h"

#include <string>
#include <vector>

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

std::shared_ptr<VirtualSwitchStandardPolicyFailoverSet>
VirtualSwitchStandardPolicyFailoverSet::New() {
  return std::shared_ptr<VirtualSwitchStandardPolicyFailoverSet>(
      new VirtualSwitchStandardPolicyFailoverSet());
}

VirtualSwitchStandardPolicyFailoverSet::VirtualSwitchStandardPolicyFailoverSet() {
  SetDescription("Configure the Failover policy for a virtual switch.");
}

VirtualSwitchStandardPolicyFailoverSet::~VirtualSwitchStandardPolicyFailoverSet() = default;

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicyFailoverSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto name = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  name->SetRequired(true);
  name->SetShortName("v");
  name->SetDescription(
      "The name of the virtual switch to use when configuring the switch failover policy.");
  spec->AddParameter(name);
  AddFailoverParameters(spec);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchStandardPolicyFailoverSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void VirtualSwitchStandardPolicyFailoverSet::ExecuteInternal(
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
