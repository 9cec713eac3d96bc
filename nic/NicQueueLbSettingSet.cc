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

NETWORK_COMMAND_NEW(NicQueueLbSettingSet, Bool)

NicQueueLbSettingSet::NicQueueLbSettingSet() {
  SetDescription("Enable/disable netqueue load balancer setting on a NIC.");
}

std::shared_ptr<InputSpec> NicQueueLbSettingSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(
      Required(Shared::Ornic, "Name of ornic to update netqueue load balancer setting."));
  for (auto const& setting : kLbSettings) {
    spec->AddParameter(
        Optional(setting.parameter, ParameterType::Bool, nullptr, setting.description));
  }
  return spec;
}

void NicQueueLbSettingSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                           std::shared_ptr<Output> const& output) {
  try {
    SetNetqueue(*input, *output, MissingPnicWords::NotFound,
                [&](HostCtl::Network::PnicNetqueueInfo& info) {
                  for (int i = 0; i < HostCtl::Network::PnicNetqueueInfo::kSettingCount; ++i) {
                    if (!input->HasParameter(kLbSettings[i].parameter)) continue;
                    info.settingsMask |= 1u << i;
                    info.allowed[i] = input->GetParameterBool(kLbSettings[i].parameter);
                  }
                  return info.settingsMask != 0;
                });
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
