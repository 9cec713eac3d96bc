#include "firewall/FirewallRulesetSet.h"

#include <string>

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

std::shared_ptr<FirewallRulesetSet> FirewallRulesetSet::New() {
  return std::shared_ptr<FirewallRulesetSet>(new FirewallRulesetSet());
}

FirewallRulesetSet::FirewallRulesetSet() {
  SetDescription("Set firewall ruleset status (allowedAll flag and enabled status).");
}

FirewallRulesetSet::~FirewallRulesetSet() = default;

std::shared_ptr<InputSpec> FirewallRulesetSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(NewRulesetIdParameter(true, kRulesetLabelDescription));
  auto allowedAll = ParameterSpec::New(kAllowedAll, ParameterType::Bool);
  allowedAll->SetRequired(false);
  allowedAll->SetShortName("a");
  allowedAll->SetDescription("Set to true to allowed all ip, set to false to use allowed ip list.");
  spec->AddParameter(allowedAll);
  auto enabled = ParameterSpec::New(kEnabled, ParameterType::Bool);
  enabled->SetRequired(false);
  enabled->SetShortName("e");
  enabled->SetDescription("Set to true to enable ruleset, set to false to disable it.");
  spec->AddParameter(enabled);
  return spec;
}

std::shared_ptr<OutputSpec> FirewallRulesetSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
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
