#include "vswitch/VirtualSwitchPortGroupPolicySecurityGet.h"

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
const std::string kNotFound = "Unable to find a port group with the name ";
const std::string kOverridePromiscuous = "Override Vswitch Allow Promiscuous";
const std::string kOverrideMacChange = "Override Vswitch Allow MAC Address Change";
const std::string kOverrideForgedTransmits = "Override Vswitch Allow Forged Transmits";
}  // namespace

std::shared_ptr<VirtualSwitchPortGroupPolicySecurityGet>
VirtualSwitchPortGroupPolicySecurityGet::New() {
  return std::shared_ptr<VirtualSwitchPortGroupPolicySecurityGet>(
      new VirtualSwitchPortGroupPolicySecurityGet());
}

VirtualSwitchPortGroupPolicySecurityGet::VirtualSwitchPortGroupPolicySecurityGet() {
  SetDescription("Get the Security Policy governing the given port group. ");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:PortGroupSecurityPolicy",
                            "Allow Promiscuous,Allow MAC Address Change,Allow Forged "
                            "Transmits,Override Vswitch Allow Promiscuous,Override Vswitch Allow "
                            "MAC Address Change,Override Vswitch Allow Forged Transmits");
  SetDefaultOutputParameter("header:PortGroupSecurityPolicy", "<NONE>");
}

VirtualSwitchPortGroupPolicySecurityGet::~VirtualSwitchPortGroupPolicySecurityGet() = default;

std::shared_ptr<MetaStruct> VirtualSwitchPortGroupPolicySecurityGet::GetOutputStructure() {
  auto result = MetaStruct::New("PortGroupSecurityPolicy");
  AddSecurityFields(*result);
  result->SetField(kOverridePromiscuous, MetaBool::New());
  result->SetField(kOverrideMacChange, MetaBool::New());
  result->SetField(kOverrideForgedTransmits, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicySecurityGet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto name = ParameterSpec::New(kPortgroupName, Toolbase::CallSpec::String);
  name->SetRequired(true);
  name->SetShortName("p");
  name->SetDescription(
      "The name of the port group to use when fetching the network security policy.");
  spec->AddParameter(name);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchPortGroupPolicySecurityGet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(GetOutputStructure());
  return spec;
}

void VirtualSwitchPortGroupPolicySecurityGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    auto result = GetOutputStructure();
    if (input->HasParameter(kPortgroupName)) {
      std::string const& name = input->GetParameter(kPortgroupName);
      auto group = HostCtl::Network::NetworkFactory::GetPortGroupByName(name);
      if (!group) {
        output->AddErrorMessage(kNotFound + name);
        return;
      }
      HostCtl::Network::PortSecurityPolicy effective = group->GetEffectiveSecurityPolicy();
      HostCtl::Network::PortSecurityPolicy configured = group->GetConfiguredSecurityPolicy();
      FillSecurityFields(*result, effective);
      using HostCtl::Network::PortSecurityPolicy;
      uint32_t mask = configured.setMask;
      result->SetField(kOverridePromiscuous, (mask & PortSecurityPolicy::PROMISCUOUS_BIT) != 0);
      result->SetField(kOverrideMacChange, (mask & PortSecurityPolicy::MAC_CHANGE_BIT) != 0);
      result->SetField(kOverrideForgedTransmits,
                       (mask & PortSecurityPolicy::FORGED_TRANSMITS_BIT) != 0);
    }
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
