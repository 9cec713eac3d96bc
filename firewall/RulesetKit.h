// What the ruleset commands share: the `--ruleset-id` option, the lookup of
// the rulesets a list command shows, the lookup through the host object of
// the client commands, and the body of the two allowed-address changes.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "frame/KitDeclarations.h"

namespace HostCtl::System {
class FirewallRuleset;
}  // namespace HostCtl::System
namespace OrvkCtl::System {
class SystemInfoImpl;
}  // namespace OrvkCtl::System

namespace CorvaneCli::NetworkNamespace {

extern const std::string kRulesetIdOption;
// What every command but the list commands says of an unknown ruleset.
extern const std::string kInvalidRulesetId;
// The description of a required `--ruleset-id`.
extern const char kRulesetLabelDescription[];

// The `--ruleset-id` parameter (short `r`).
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewRulesetIdParameter(bool required,
                                                                         char const* description);

// The rulesets a list command shows, in order: the one that `--ruleset-id`
// names when `hasId`, else all of them. For an unknown id, or when the check
// whether it exists fails, it adds the message the list commands give and
// returns false; the command then returns without a root. A failure of the
// walk over all rulesets passes on as HostCtlException.
bool CollectRulesets(OrvkCtl::System::SystemInfoImpl& systemInfo,
                     Toolbase::CallSpec::Input const& input, bool hasId,
                     Toolbase::CallSpec::Output& output,
                     std::vector<std::unique_ptr<HostCtl::System::FirewallRuleset>>& rulesets);

// The ruleset `id`, found through the host object; null after adding
// kInvalidRulesetId when the host has no such ruleset.
std::unique_ptr<HostCtl::System::FirewallRuleset> FindClientRuleset(
    std::string const& id, Toolbase::CallSpec::Output& output);

enum class AllowedIpChange { Add, Remove };

// The whole run of `allowedip add` and `allowedip remove`, which differ only
// in the host operation they call.
void ChangeAllowedIp(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                     AllowedIpChange change);

// The `--ruleset-id` and `--ip-address` parameters of those two commands.
void AddAllowedIpParameters(Toolbase::CallSpec::InputSpec& spec);

}  // namespace CorvaneCli::NetworkNamespace
