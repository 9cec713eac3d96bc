#include "firewall/FirewallRulesetAllowedipAdd.h"

#include "firewall/RulesetKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

std::shared_ptr<FirewallRulesetAllowedipAdd> FirewallRulesetAllowedipAdd::New() {
  return std::shared_ptr<FirewallRulesetAllowedipAdd>(new FirewallRulesetAllowedipAdd());
}

FirewallRulesetAllowedipAdd::FirewallRulesetAllowedipAdd() {
  SetDescription("Add allowed ip address/range to the ruleset ruleset.");
}

FirewallRulesetAllowedipAdd::~FirewallRulesetAllowedipAdd() = default;

std::shared_ptr<InputSpec> FirewallRulesetAllowedipAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  AddAllowedIpParameters(*spec);
  return spec;
}

std::shared_ptr<OutputSpec> FirewallRulesetAllowedipAdd::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void FirewallRulesetAllowedipAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                 std::shared_ptr<Output> const& output) {
  ChangeAllowedIp(*input, *output, AllowedIpChange::Add);
}

}  // namespace CorvaneCli::NetworkNamespace
