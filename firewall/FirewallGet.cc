#include <string>

#include "firewall/FirewallCommands.h"
#include "firewall/firewall_module.h"
#include "hostctl/system.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kLoaded = "Loaded";
const std::string kEnabled = "Enabled";
const std::string kDefaultAction = "DefaultAction";
}  // namespace

NETWORK_COMMAND_NEW(FirewallGet, Struct)

FirewallGet::FirewallGet() {
  SetDescription("Get the firewall status.");
  SetDefaultOutputFormatter("simple");
}

std::shared_ptr<MetaStruct> FirewallGet::GetOutputStructure() {
  auto result = MetaStruct::New("Firewall");
  result->SetField(kLoaded, MetaBool::New());
  result->SetField(kEnabled, MetaBool::New());
  result->SetField(kDefaultAction, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> FirewallGet::GetInputSpecInternal() { return InputSpec::New(); }

void FirewallGet::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                                  std::shared_ptr<Output> const& output) {
  OrvkCtl::System::SystemInfoImpl systemInfo;
  try {
    OrvkCtl::System::ModuleImpl module(kFirewallModuleName);
    auto result = GetOutputStructure();
    bool loaded = module.IsLoaded();
    bool enabled = false;
    bool pass = true;
    if (loaded) {
      enabled = systemInfo.IsFirewallEnabled();
      pass = systemInfo.GetFirewallDefaultAction();
    }
    result->SetField(kLoaded, loaded);
    result->SetField(kEnabled, enabled);
    result->SetField(kDefaultAction, pass ? "PASS" : "DROP");
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to get firewall status.\n" + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
