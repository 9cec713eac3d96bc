#include "firewall/FirewallCommands.h"
#include "firewall/firewall_module.h"
#include "hostctl/system.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(FirewallLoad, Bool)

FirewallLoad::FirewallLoad() { SetDescription("Load firewall module and rulesets configuration."); }

std::shared_ptr<InputSpec> FirewallLoad::GetInputSpecInternal() { return InputSpec::New(); }

void FirewallLoad::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                                   std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::System::SystemInfoImpl systemInfo;
    OrvkCtl::System::ModuleImpl module(kFirewallModuleName);
    module.Load(HostCtl::emptyString, false);
    systemInfo.LoadFirewallRulesets();
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
