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
const std::string kAllowedIpAddresses = "Allowed IP Addresses";
}  // namespace

NETWORK_COMMAND_NEW(FirewallRulesetAllowedipList, Rows)

FirewallRulesetAllowedipList::FirewallRulesetAllowedipList() {
  SetDescription("list allowed ip addresses for rulesets.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:FirewallRulesetAllowedip", "Ruleset,Allowed IP Addresses");
}

std::shared_ptr<MetaStruct> FirewallRulesetAllowedipList::GetOutputStructure() {
  auto result = MetaStruct::New("FirewallRulesetAllowedip");
  result->SetField(kRuleset, MetaString::New());
  result->SetField(kAllowedIpAddresses, MetaList::New(MetaType::String));
  return result;
}

std::shared_ptr<InputSpec> FirewallRulesetAllowedipList::GetInputSpecInternal() {
  return InputSpecOf({NewRulesetIdParameter(false, kRulesetLabelDescription)});
}

void FirewallRulesetAllowedipList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                   std::shared_ptr<Output> const& output) {
  OrvkCtl::System::SystemInfoImpl systemInfo;
  bool hasId = input->HasParameter(kRulesetIdOption);
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    HostCtl::System::FirewallRulesetList rulesets;
    if (!CollectRulesets(systemInfo, *input, hasId, *output, rulesets)) return;
    for (auto const& ruleset : rulesets) {
      auto row = GetOutputStructure();
      row->SetField(kRuleset, ruleset->GetRulesetId());
      auto addresses = MetaList::New(MetaType::String);
      if (ruleset->IsAllowedAll()) {
        addresses->Add("All");
      } else {
        auto const& allowed = ruleset->GetAllowedIps();
        for (auto const& address : allowed.ipv4Addresses)
          addresses->Add(address.GetStringAddress());
        for (auto const& address : allowed.ipv6Addresses)
          addresses->Add(address.GetStringAddress());
        for (auto const& network : allowed.ipv4Networks) addresses->Add(network.GetStringAddress());
        for (auto const& network : allowed.ipv6Networks) addresses->Add(network.GetStringAddress());
      }
      row->SetField(kAllowedIpAddresses, addresses);
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
