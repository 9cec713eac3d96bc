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

NETWORK_COMMAND_NEW(VirtualSwitchStandardPolicySecurityGet, Struct)

VirtualSwitchStandardPolicySecurityGet::VirtualSwitchStandardPolicySecurityGet() {
  SetDescription("Get the Security Policy governing the given virtual switch.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:VirtualSwitchSecurityPolicy",
                            "Allow Promiscuous,Allow MAC Address Change,Allow Forged Transmits");
  SetDefaultOutputParameter("header:VirtualSwitchSecurityPolicy", "<NONE>");
}

std::shared_ptr<MetaStruct> VirtualSwitchStandardPolicySecurityGet::GetOutputStructure() {
  auto result = MetaStruct::New("VirtualSwitchSecurityPolicy");
  AddSecurityFields(*result);
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchStandardPolicySecurityGet::GetInputSpecInternal() {
  return InputSpecOf({Required(
      Shared::VswitchName,
      "The name of the virtual switch to use when fetching the network security policy.")});
}

void VirtualSwitchStandardPolicySecurityGet::ExecuteInternal(
    std::shared_ptr<Input> const& input, std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    auto vswitch = FindPolicyStandardSwitch(switchInfo, *input, *output);
    if (!vswitch) return;
    auto result = GetOutputStructure();
    FillSecurityFields(*result, vswitch->GetEffectiveSecurityPolicy());
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
