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
const std::string kName = "Name";
const std::string kEnabled = "Enabled";
}  // namespace

NETWORK_COMMAND_NEW(FirewallRulesetList, Rows)

FirewallRulesetList::FirewallRulesetList() {
  SetDescription("List the rulesets in firewall.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:Ruleset", "Name,Enabled");
}

std::shared_ptr<InputSpec> FirewallRulesetList::GetInputSpecInternal() {
  return InputSpecOf({NewRulesetIdParameter(false, "List configuration for specfic ruleset")});
}

std::shared_ptr<MetaStruct> FirewallRulesetList::GetOutputStructure() {
  auto result = MetaStruct::New("Ruleset");
  result->SetField(kName, MetaString::New());
  result->SetField(kEnabled, MetaBool::New());
  return result;
}

void FirewallRulesetList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                          std::shared_ptr<Output> const& output) {
  OrvkCtl::System::SystemInfoImpl systemInfo;
  bool hasId = input->HasParameter(kRulesetIdOption);
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    HostCtl::System::FirewallRulesetList rulesets;
    if (!CollectRulesets(systemInfo, *input, hasId, *output, rulesets)) return;
    for (auto const& ruleset : rulesets) {
      auto row = GetOutputStructure();
      row->SetField(kName, ruleset->GetRulesetId());
      row->SetField(kEnabled, ruleset->IsEnabled());
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
