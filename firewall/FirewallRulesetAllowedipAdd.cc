#include "firewall/FirewallCommands.h"
#include "firewall/RulesetKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(FirewallRulesetAllowedipAdd, Bool)

FirewallRulesetAllowedipAdd::FirewallRulesetAllowedipAdd() {
  SetDescription("Add allowed ip address/range to the ruleset ruleset.");
}

std::shared_ptr<InputSpec> FirewallRulesetAllowedipAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  AddAllowedIpParameters(*spec);
  return spec;
}

void FirewallRulesetAllowedipAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                  std::shared_ptr<Output> const& output) {
  ChangeAllowedIp(*input, *output, AllowedIpChange::Add);
}

}  // namespace CorvaneCli::NetworkNamespace
