#include <algorithm>
#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NetqueueKit.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kStructure = "NetqBalPlugin";
const std::string kNic = "NIC";
const std::string kModuleName = "Module Name";
const std::string kPluginName = "Plugin Name";
const std::string kEnabled = "Enabled";
const std::string kDescription = "Description";
}  // namespace

NETWORK_COMMAND_NEW(NicQueueLbPluginList, Rows)

NicQueueLbPluginList::NicQueueLbPluginList() {
  SetDescription(
      "Details of netqueue balancer plugins on all physical NICs currently installed and loaded "
      "on the system");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:NetqBalPlugin",
                            "NIC,Module Name,Plugin Name,Enabled,Description");
  SetDefaultOutputParameter("wrap-last", "true");
}

std::shared_ptr<MetaStruct> NicQueueLbPluginList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  result->SetField(kModuleName, MetaString::New());
  result->SetField(kPluginName, MetaString::New());
  result->SetField(kEnabled, MetaBool::New());
  result->SetField(kDescription, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> NicQueueLbPluginList::GetInputSpecInternal() {
  return InputSpecOf({Optional(Shared::Ornic, "The name of pnic to get netqueue plugin details")});
}

void NicQueueLbPluginList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                           std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    bool const done = WalkNetqueue(
        *networkInfo, *input, *output, true, MissingPnicWords::InvalidName,
        [&](HostCtl::Network::Pnic& pnic, HostCtl::Network::PnicNetqueueInfo const& info) {
          for (auto const& plugin : info.availablePlugins) {
            bool const enabled =
                std::any_of(info.activePlugins.begin(), info.activePlugins.end(),
                            [&](HostCtl::Network::PnicNetqueuePluginInfo const& active) {
                              return active.moduleName == plugin.moduleName &&
                                     active.pluginName == plugin.pluginName;
                            });
            auto row = GetOutputStructure();
            row->SetField(kNic, pnic.GetName());
            row->SetField(kModuleName, plugin.moduleName);
            row->SetField(kPluginName, plugin.pluginName);
            row->SetField(kEnabled, enabled);
            row->SetField(kDescription, plugin.description);
            list->Add(row);
          }
        });
    if (!done) return;
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
