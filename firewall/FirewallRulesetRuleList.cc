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
const std::string kRuleset = "Ruleset";
const std::string kPortType = "Port Type";
const std::string kPortBegin = "Port Begin";
const std::string kPortEnd = "Port End";
const std::string kDirection = "Direction";
const std::string kProtocol = "Protocol";
}  // namespace

NETWORK_COMMAND_NEW(FirewallRulesetRuleList, Rows)

FirewallRulesetRuleList::FirewallRulesetRuleList() {
  SetDescription("List the rules of each ruleset in firewall.");
  // The second formatter is the one in force.
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:FirewallPortRule",
                            "Ruleset,Direction,Protocol,Port Type,Port Begin,Port End");
}

std::shared_ptr<MetaStruct> FirewallRulesetRuleList::GetOutputStructure() {
  auto result = MetaStruct::New("FirewallPortRule");
  result->SetField(kRuleset, MetaString::New());
  result->SetField(kPortType, MetaString::New());
  result->SetField(kPortBegin, MetaInt::New());
  result->SetField(kPortEnd, MetaInt::New());
  result->SetField(kDirection, MetaString::New());
  result->SetField(kProtocol, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> FirewallRulesetRuleList::GetInputSpecInternal() {
  return InputSpecOf({NewRulesetIdParameter(false, "List rules for specfic ruleset")});
}

void FirewallRulesetRuleList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                              std::shared_ptr<Output> const& output) {
  OrvkCtl::System::SystemInfoImpl systemInfo;
  bool hasId = input->HasParameter(kRulesetIdOption);
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    HostCtl::System::FirewallRulesetList rulesets;
    if (!CollectRulesets(systemInfo, *input, hasId, *output, rulesets)) return;
    for (auto const& ruleset : rulesets) {
      std::string id = ruleset->GetRulesetId();
      for (auto const& rule : ruleset->GetRules()) {
        auto row = GetOutputStructure();
        row->SetField(kRuleset, id);
        row->SetField(kPortType, rule->portType == 1 ? "Dst" : "Src");
        row->SetField(kPortBegin, rule->portBegin);
        row->SetField(kPortEnd, rule->portEnd);
        row->SetField(kDirection, rule->direction == 0 ? "Inbound" : "Outbound");
        row->SetField(kProtocol, rule->protocol == 0 ? "TCP" : "UDP");
        list->Add(row);
      }
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
