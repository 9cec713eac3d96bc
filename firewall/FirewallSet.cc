#include <string>

#include "firewall/FirewallCommands.h"
#include "firewall/firewall_module.h"
#include "hostctl/system.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kEnabled = "enabled";
const std::string kDefaultAction = "default-action";
}  // namespace

NETWORK_COMMAND_NEW(FirewallSet, Bool)

FirewallSet::FirewallSet() { SetDescription("Set firewall enabled status and default action."); }

std::shared_ptr<InputSpec> FirewallSet::GetInputSpecInternal() {
  return InputSpecOf(
      {Optional(kEnabled, Bool, "e",
                "Set to true to enable the firewall, set to false to disable the firewall."),
       Optional(kDefaultAction, Bool, "d",
                "Set to true to set defaultaction PASS, set to false to DROP.")});
}

void FirewallSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                  std::shared_ptr<Output> const& output) {
  OrvkCtl::System::SystemInfoImpl systemInfo;
  if (!input->HasParameter(kEnabled) && !input->HasParameter(kDefaultAction)) {
    output->AddErrorMessage("Need parameter --enabled or --default-action");
    return;
  }
  try {
    OrvkCtl::System::ModuleImpl module(kFirewallModuleName);
    if (!module.IsLoaded()) {
      output->AddErrorMessage("Firewall module is not loaded");
      return;
    }
    bool enabled = systemInfo.IsFirewallEnabled();
    bool pass = systemInfo.GetFirewallDefaultAction();
    if (input->HasParameter(kEnabled)) {
      bool wanted = input->GetParameterBool(kEnabled);
      if (wanted != enabled) systemInfo.SetFirewallEnabled(wanted);
    }
    if (input->HasParameter(kDefaultAction)) {
      bool wanted = input->GetParameterBool(kDefaultAction);
      if (wanted != pass) systemInfo.SetFirewallDefaultAction(wanted);
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
