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
const std::string kOverridePromiscuous = "Override Vswitch Allow Promiscuous";
const std::string kOverrideMacChange = "Override Vswitch Allow MAC Address Change";
const std::string kOverrideForgedTransmits = "Override Vswitch Allow Forged Transmits";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicySecurityGet)

VirtualSwitchPortGroupPolicySecurityGet::VirtualSwitchPortGroupPolicySecurityGet() {
  SetDescription("Get the Security Policy governing the given port group. ");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:PortGroupSecurityPolicy",
                            "Allow Promiscuous,Allow MAC Address Change,Allow Forged "
                            "Transmits,Override Vswitch Allow Promiscuous,Override Vswitch Allow "
                            "MAC Address Change,Override Vswitch Allow Forged Transmits");
  SetDefaultOutputParameter("header:PortGroupSecurityPolicy", "<NONE>");
}

std::shared_ptr<MetaStruct> VirtualSwitchPortGroupPolicySecurityGet::GetOutputStructure() {
  auto result = MetaStruct::New("PortGroupSecurityPolicy");
  AddSecurityFields(*result);
  result->SetField(kOverridePromiscuous, MetaBool::New());
  result->SetField(kOverrideMacChange, MetaBool::New());
  result->SetField(kOverrideForgedTransmits, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicySecurityGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::PortgroupName,
                "The name of the port group to use when fetching the network security policy.")});
}

std::shared_ptr<OutputSpec> VirtualSwitchPortGroupPolicySecurityGet::GetOutputSpecInternal() {
  return RootSpec(GetOutputStructure());
}

void VirtualSwitchPortGroupPolicySecurityGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    auto result = GetOutputStructure();
    if (input->HasParameter(kPortgroupName)) {
      std::string const& name = input->GetParameter(kPortgroupName);
      auto group = FindPolicyPortGroup(name, *output);
      if (!group) return;
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
