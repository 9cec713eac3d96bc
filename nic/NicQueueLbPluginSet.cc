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
const std::string kEnable = "enable";
const std::string kModule = "module";
const std::string kPlugin = "plugin";
}  // namespace

NETWORK_COMMAND_NEW(NicQueueLbPluginSet, Bool)

NicQueueLbPluginSet::NicQueueLbPluginSet() {
  SetDescription("Enable/disable netqueue balancer plugin on a NIC");
}

std::shared_ptr<InputSpec> NicQueueLbPluginSet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::Ornic, "Name of ornic to change netqueue balancer plugin state"),
       Required(kEnable, ParameterType::Bool, "e", "Netqueue balancer plugin state"),
       Required(kModule, ParameterType::String, "m", "Name of netqueue balancer module"),
       Required(kPlugin, ParameterType::String, "p", "Name of netqueue balancer plugin")});
}

void NicQueueLbPluginSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                          std::shared_ptr<Output> const& output) {
  try {
    SetNetqueue(*input, *output, MissingPnicWords::InvalidName,
                [&](HostCtl::Network::PnicNetqueueInfo& info) {
                  info.activePlugins.push_back(
                      {input->GetParameter(kModule), input->GetParameter(kPlugin), std::string()});
                  info.pluginEnabled = input->GetParameterBool(kEnable);
                  info.applyPluginState = true;
                  return true;
                });
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
