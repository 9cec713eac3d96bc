#include "firewall/RulesetKit.h"

#include "frame/CommandKit.h"
#include "hostctl/host.h"
#include "hostctl/system.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using HostCtl::Lib::HostCtlException;
using HostCtl::System::FirewallRuleset;

const std::string kRulesetIdOption = "ruleset-id";
const std::string kInvalidRulesetId = "Invalid Ruleset Id.";
const char kRulesetLabelDescription[] = "The label of the ruleset.";

namespace {
const std::string kIpAddressOption = "ip-address";
}  // namespace

std::shared_ptr<ParameterSpec> NewRulesetIdParameter(bool required, char const* description) {
  return required ? Required(kRulesetIdOption, ParameterType::String, "r", description)
                  : Optional(kRulesetIdOption, ParameterType::String, "r", description);
}

bool CollectRulesets(OrvkCtl::System::SystemInfoImpl& systemInfo, Input const& input, bool hasId,
                     Output& output, std::vector<std::unique_ptr<FirewallRuleset>>& rulesets) {
  if (!hasId) {
    rulesets = systemInfo.GetFirewallRulesets();
    return true;
  }
  std::string const& id = input.GetParameter(kRulesetIdOption);
  try {
    auto ruleset = systemInfo.GetFirewallRulesetById(id);
    if (!ruleset->IsLoaded()) {
      output.AddErrorMessage("Ruleset Not Found: " + id);
      return false;
    }
    rulesets.push_back(std::move(ruleset));
  } catch (HostCtlException const&) {
    // The id tells the user more than the host's text would.
    output.AddErrorMessage("Failed to check loaded status: " + id);
    return false;
  }
  return true;
}

std::unique_ptr<FirewallRuleset> FindClientRuleset(std::string const& id, Output& output) {
  HostCtl::HostFactory::GetHost();
  auto systemInfo = HostCtl::Host::GetSystemInfo();
  auto ruleset = systemInfo->GetFirewallRulesetById(id);
  if (!ruleset->IsLoaded()) {
    output.AddErrorMessage(kInvalidRulesetId);
    return nullptr;
  }
  return ruleset;
}

void AddAllowedIpParameters(InputSpec& spec) {
  spec.AddParameter(NewRulesetIdParameter(true, kRulesetLabelDescription));
  auto ipAddress = Required(kIpAddressOption, ParameterType::String, "i",
                            "Allowed ip address/range for the ruleset.");
  spec.AddParameter(ipAddress);
}

void ChangeAllowedIp(Input const& input, Output& output, AllowedIpChange change) {
  OrvkCtl::System::SystemInfoImpl systemInfo;
  std::string const& id = input.GetParameter(kRulesetIdOption);
  std::string const& ipAddress = input.GetParameter(kIpAddressOption);
  try {
    auto ruleset = systemInfo.GetFirewallRulesetById(id);
    if (!ruleset->IsLoaded()) {
      output.AddErrorMessage(kInvalidRulesetId);
      return;
    }
    if (ruleset->IsAllowedAll()) {
      output.AddErrorMessage("Couldn't update allowed ip list when allowed-all flag is true.");
      return;
    }
    if (ipAddress.empty()) {
      // Reported, and the command still ends with its root.
      output.AddErrorMessage("Invalid allowedip parameter.");
    } else if (change == AllowedIpChange::Add) {
      ruleset->AddAllowedIp(ipAddress);
    } else {
      ruleset->RemoveAllowedIp(ipAddress);
    }
    output.SetRootObject(Toolbase::MetaObj::MetaBool::New(true));
  } catch (HostCtlException const& e) {
    output.AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
