#include "firewall/FirewallCommands.h"
#include "hostctl/system.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(FirewallRefresh, Bool)

FirewallRefresh::FirewallRefresh() { SetDescription("Load ruleset configuration for firewall."); }

std::shared_ptr<InputSpec> FirewallRefresh::GetInputSpecInternal() { return InputSpec::New(); }

void FirewallRefresh::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                                      std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::System::SystemInfoImpl systemInfo;
    // Reloading the configuration drops the rules added at run time: keep
    // them and put them back, in the order the host listed them.
    HostCtl::System::FirewallRuleList dynamicRules = systemInfo.GetFirewallDynamicRules();
    systemInfo.LoadFirewallRulesets();
    for (auto const& rule : dynamicRules) systemInfo.AddFirewallDynamicRule(*rule);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
