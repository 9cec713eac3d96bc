#include "vswitch/VirtualSwitchStandardPolicySecuritySet.h"

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
const std::string kAllowPromiscuous = "allow-promiscuous";
const std::string kAllowMacChange = "allow-mac-change";
const std::string kAllowForgedTransmits = "allow-forged-transmits";
}  // namespace

std::shared_ptr<VirtualSwitchStandardPolicySecuritySet>
VirtualSwitchStandardPolicySecuritySet::New() {
  return std::shared_ptr<VirtualSwitchStandardPolicySecuritySet>(
      new VirtualSwitchStandardPolicySecuritySet());
}

VirtualSwitchStandardPolicySecuritySet::VirtualSwitchStandardPolicySecuritySet() {
  SetDescription("Set the security policy for a given virtual switch");
}

VirtualSwitchStandardPolicySecuritySet::~VirtualSwitchStandardPolicySecuritySet() = default;

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicySecuritySet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto name = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  name->SetRequired(true);
  name->SetShortName("v");
  name->SetDescription(
      "The name of the virtual switch to use when setting the switch security policy.");
  spec->AddParameter(name);
  auto promiscuous = ParameterSpec::New(kAllowPromiscuous, Bool);
  promiscuous->SetRequired(false);
  promiscuous->SetShortName("p");
  promiscuous->SetDescription("Allow ports on the virtual switch to enter promiscuous mode.");
  spec->AddParameter(promiscuous);
  auto macChange = ParameterSpec::New(kAllowMacChange, Bool);
  macChange->SetRequired(false);
  macChange->SetShortName("m");
  macChange->SetDescription("Allow ports on the virtual switch to change their MAC address.");
  spec->AddParameter(macChange);
  auto forged = ParameterSpec::New(kAllowForgedTransmits, Bool);
  forged->SetRequired(false);
  forged->SetShortName("f");
  forged->SetDescription(
      "Allow ports on the virtual switch to send packets with forged source information.");
  spec->AddParameter(forged);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchStandardPolicySecuritySet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void VirtualSwitchStandardPolicySecuritySet::ExecuteInternal(
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
    HostCtl::Network::PortSecurityPolicy policy = vswitch->GetEffectiveSecurityPolicy();
    if (input->HasParameter(kAllowPromiscuous)) {
      policy.SetAllowPromiscuous(input->GetParameterBool(kAllowPromiscuous));
    }
    if (input->HasParameter(kAllowMacChange)) {
      policy.SetAllowMacAddressChange(input->GetParameterBool(kAllowMacChange));
    }
    if (input->HasParameter(kAllowForgedTransmits)) {
      policy.SetAllowForgedTransmits(input->GetParameterBool(kAllowForgedTransmits));
    }
    vswitch->ApplySecurityPolicy(policy);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
