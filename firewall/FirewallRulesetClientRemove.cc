#include <string>

#include "firewall/FirewallCommands.h"
#include "firewall/RulesetKit.h"
#include "hostctl/system.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(FirewallRulesetClientRemove, Bool)

FirewallRulesetClientRemove::FirewallRulesetClientRemove() {
  SetDescription(
      "Remove a client from a firewall ruleset. This decrements the number of clients using the "
      "ruleset and if the number reaches zero the ruleset is disabled.");
}

std::shared_ptr<InputSpec> FirewallRulesetClientRemove::GetInputSpecInternal() {
  return InputSpecOf({NewRulesetIdParameter(true, kRulesetLabelDescription)});
}

void FirewallRulesetClientRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                  std::shared_ptr<Output> const& output) {
  std::string id = input->GetParameter(kRulesetIdOption);
  try {
    auto ruleset = FindClientRuleset(id, *output);
    if (!ruleset) return;
    ruleset->RemoveClient();
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
