#include "firewall/FirewallCommands.h"
#include "firewall/RulesetKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(FirewallRulesetAllowedipRemove, Bool)

FirewallRulesetAllowedipRemove::FirewallRulesetAllowedipRemove() {
  SetDescription("Remove allowed ip address/range from the ruleset.");
}

std::shared_ptr<InputSpec> FirewallRulesetAllowedipRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  AddAllowedIpParameters(*spec);
  return spec;
}

void FirewallRulesetAllowedipRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                     std::shared_ptr<Output> const& output) {
  ChangeAllowedIp(*input, *output, AllowedIpChange::Remove);
}

}  // namespace CorvaneCli::NetworkNamespace
