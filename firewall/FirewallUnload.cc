#include "firewall/FirewallCommands.h"
#include "firewall/firewall_module.h"
#include "hostctl/system.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(FirewallUnload, Bool)

FirewallUnload::FirewallUnload() { SetDescription("Allow unload firewall module."); }

std::shared_ptr<InputSpec> FirewallUnload::GetInputSpecInternal() { return InputSpec::New(); }

void FirewallUnload::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                                     std::shared_ptr<Output> const& output) {
  OrvkCtl::System::SystemInfoImpl systemInfo;
  try {
    OrvkCtl::System::ModuleImpl module(kFirewallModuleName);
    if (module.IsLoaded()) {
      systemInfo.DestroyFirewallFilters();
      module.Unload();
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
