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
using HostCtl::Network::PortSecurityPolicy;

// The overrides shown, in the order shown.
const OverrideField kOverrides[] = {
    {"Override Vswitch Allow Promiscuous", PortSecurityPolicy::PROMISCUOUS_BIT},
    {"Override Vswitch Allow MAC Address Change", PortSecurityPolicy::MAC_CHANGE_BIT},
    {"Override Vswitch Allow Forged Transmits", PortSecurityPolicy::FORGED_TRANSMITS_BIT},
};
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupPolicySecurityGet, Struct)

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
  AddOverrideFields(*result, kOverrides);
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupPolicySecurityGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::PortgroupName,
                "The name of the port group to use when fetching the network security policy.")});
}

void VirtualSwitchPortGroupPolicySecurityGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    auto result = GetOutputStructure();
    if (input->HasParameter(kPortgroupName)) {
      auto group = FindPolicyPortGroup(*input, *output);
      if (!group) return;
      PortSecurityPolicy effective = group->GetEffectiveSecurityPolicy();
      PortSecurityPolicy configured = group->GetConfiguredSecurityPolicy();
      FillSecurityFields(*result, effective);
      FillOverrideFields(*result, kOverrides, configured.setMask);
    }
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
