#include <string>

#include "firewall/FirewallCommands.h"
#include "firewall/RulesetKit.h"
#include "hostctl/system.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(FirewallRulesetClientAdd, Bool)

FirewallRulesetClientAdd::FirewallRulesetClientAdd() {
  SetDescription(
      "Add a new client to a firewall ruleset. This enables the firewall ruleset and increments "
      "the number of clients using the ruleset.");
}

std::shared_ptr<InputSpec> FirewallRulesetClientAdd::GetInputSpecInternal() {
  return InputSpecOf({NewRulesetIdParameter(true, kRulesetLabelDescription)});
}

void FirewallRulesetClientAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                               std::shared_ptr<Output> const& output) {
  std::string id = input->GetParameter(kRulesetIdOption);
  try {
    auto ruleset = FindClientRuleset(id, *output);
    if (!ruleset) return;
    ruleset->AddClient();
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
