#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "nic/NicFeatureKit.h"
#include "nic/PnicLookup.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(NicSoftwareSet, Bool)

NicSoftwareSet::NicSoftwareSet() {
  SetDescription("Enable and disable software simulation settings on a NIC.");
}

std::shared_ptr<InputSpec> NicSoftwareSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(
      Shared::Ornic, "Name of the ornic whose software similation settings should be updated."));
  for (auto const& setting : kSoftwareSimulationSettings) {
    spec->AddParameter(
        Optional(setting.parameter, ParameterType::Bool, nullptr, setting.description));
  }
  return spec;
}

void NicSoftwareSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = FindNamedPnic(*networkInfo, name, *output);
    if (!pnic) return;
    HostCtl::Network::PnicSoftwareSimulation settings;
    for (auto const& setting : kSoftwareSimulationSettings) {
      if (!input->HasParameter(setting.parameter)) continue;
      settings.mask |= setting.mask;
      settings.*setting.value = input->GetParameterBool(setting.parameter);
    }
    if (settings.mask != 0) pnic->SetSoftwareSimulation(settings);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
