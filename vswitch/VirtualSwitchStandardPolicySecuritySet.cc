#include <string>

#include "hostctl/policy.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/PolicyKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kAllowPromiscuous = "allow-promiscuous";
const std::string kAllowMacChange = "allow-mac-change";
const std::string kAllowForgedTransmits = "allow-forged-transmits";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchStandardPolicySecuritySet, Bool)

VirtualSwitchStandardPolicySecuritySet::VirtualSwitchStandardPolicySecuritySet() {
  SetDescription("Set the security policy for a given virtual switch");
}

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicySecuritySet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::VswitchName,
                "The name of the virtual switch to use when setting the switch security policy."),
       Optional(kAllowPromiscuous, Bool, "p",
                "Allow ports on the virtual switch to enter promiscuous mode."),
       Optional(kAllowMacChange, Bool, "m",
                "Allow ports on the virtual switch to change their MAC address."),
       Optional(
           kAllowForgedTransmits, Bool, "f",
           "Allow ports on the virtual switch to send packets with forged source information.")});
}

void VirtualSwitchStandardPolicySecuritySet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    auto vswitch = FindPolicyStandardSwitch(switchInfo, *input, *output);
    if (!vswitch) return;
    HostCtl::Network::PortSecurityPolicy policy = vswitch->GetEffectiveSecurityPolicy();
    SetSecurityPolicy(input, output, policy);
    vswitch->ApplySecurityPolicy(policy);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
