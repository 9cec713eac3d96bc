#include <string>

#include "firewall/FirewallCommands.h"
#include "firewall/RulesetKit.h"
#include "hostctl/system.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kAllowedAll = "allowed-all";
const std::string kEnabled = "enabled";
}  // namespace

NETWORK_COMMAND_NEW(FirewallRulesetSet, Bool)

FirewallRulesetSet::FirewallRulesetSet() {
  SetDescription("Set firewall ruleset status (allowedAll flag and enabled status).");
}

std::shared_ptr<InputSpec> FirewallRulesetSet::GetInputSpecInternal() {
  return InputSpecOf(
      {NewRulesetIdParameter(true, kRulesetLabelDescription),
       Optional(kAllowedAll, ParameterType::Bool, "a",
                "Set to true to allowed all ip, set to false to use allowed ip list."),
       Optional(kEnabled, ParameterType::Bool, "e",
                "Set to true to enable ruleset, set to false to disable it.")});
}

void FirewallRulesetSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  OrvkCtl::System::SystemInfoImpl systemInfo;
  std::string id = input->GetParameter(kRulesetIdOption);
  try {
    bool hasEnabled = input->HasParameter(kEnabled);
    bool hasAllowedAll = input->HasParameter(kAllowedAll);
    if (!hasEnabled && !hasAllowedAll) {
      output->AddErrorMessage("Need parameter --enabled or --allowed-all");
      return;
    }
    auto ruleset = systemInfo.GetFirewallRulesetById(id);
    if (!ruleset->IsLoaded()) {
      output->AddErrorMessage(kInvalidRulesetId);
      return;
    }
    bool enabled = ruleset->IsEnabled();
    bool allowedAll = ruleset->IsAllowedAll();
    if (hasAllowedAll) {
      bool wanted = input->GetParameterBool(kAllowedAll);
      // Asking for the flag as it stands is refused, and nothing else is done.
      if (wanted == allowedAll) {
        output->AddErrorMessage(allowedAll ? "Already allowed all ip"
                                           : "Already use allowed ip list");
        return;
      }
      ruleset->SetAllowedAll(wanted);
    }
    if (hasEnabled && input->GetParameterBool(kEnabled) != enabled) {
      if (enabled) {
        ruleset->Disable();
      } else {
        ruleset->Enable();
      }
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
