#include "nic/NicQueueLbPluginSet.h"

#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NetqueueKit.h"
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

std::shared_ptr<NicQueueLbPluginSet> NicQueueLbPluginSet::New() {
  return std::make_shared<NicQueueLbPluginSet>();
}

NicQueueLbPluginSet::NicQueueLbPluginSet() {
  SetDescription("Enable/disable netqueue balancer plugin on a NIC");
}

NicQueueLbPluginSet::~NicQueueLbPluginSet() = default;

std::shared_ptr<InputSpec> NicQueueLbPluginSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnicParameter, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("Name of ornic to change netqueue balancer plugin state");
  spec->AddParameter(ornic);
  auto enable = ParameterSpec::New(kEnable, ParameterType::Bool);
  enable->SetRequired(true);
  enable->SetShortName("e");
  enable->SetDescription("Netqueue balancer plugin state");
  spec->AddParameter(enable);
  auto module = ParameterSpec::New(kModule, ParameterType::String);
  module->SetRequired(true);
  module->SetShortName("m");
  module->SetDescription("Name of netqueue balancer module");
  spec->AddParameter(module);
  auto plugin = ParameterSpec::New(kPlugin, ParameterType::String);
  plugin->SetRequired(true);
  plugin->SetShortName("p");
  plugin->SetDescription("Name of netqueue balancer plugin");
  spec->AddParameter(plugin);
  return spec;
}

std::shared_ptr<OutputSpec> NicQueueLbPluginSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicQueueLbPluginSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                          std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnicParameter);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = FindNamedPnic(*networkInfo, name, *output, MissingPnicWords::InvalidName);
    if (!pnic) return;
    HostCtl::Network::PnicNetqueueInfo info;
    info.activePlugins.push_back(
        {input->GetParameter(kModule), input->GetParameter(kPlugin), std::string()});
    info.pluginEnabled = input->GetParameterBool(kEnable);
    info.applyPluginState = true;
    pnic->SetNetqueueInfo(info);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
