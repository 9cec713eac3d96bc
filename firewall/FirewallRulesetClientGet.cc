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
const std::string kClientCount = "Ruleset Client Count";
}  // namespace

NETWORK_COMMAND_NEW(FirewallRulesetClientGet, Struct)

FirewallRulesetClientGet::FirewallRulesetClientGet() {
  SetDescription("Show the number of clients using a firewall ruleset.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:FirewallRulesetClientGet", "Ruleset Client Count");
}

std::shared_ptr<MetaStruct> FirewallRulesetClientGet::GetOutputStructure() {
  auto result = MetaStruct::New("FirewallRulesetClientGet");
  result->SetField(kClientCount, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> FirewallRulesetClientGet::GetInputSpecInternal() {
  return InputSpecOf({NewRulesetIdParameter(true, kRulesetLabelDescription)});
}

void FirewallRulesetClientGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                               std::shared_ptr<Output> const& output) {
  std::string id = input->GetParameter(kRulesetIdOption);
  try {
    auto ruleset = FindClientRuleset(id, *output);
    if (!ruleset) return;
    int32_t count = ruleset->GetClientCount();
    auto result = GetOutputStructure();
    result->SetField(kClientCount, count);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
