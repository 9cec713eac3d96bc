#include "nic/NicSoftwareSet.h"

#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicFeatureKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kOrnic = "ornic";
}  // namespace

std::shared_ptr<NicSoftwareSet> NicSoftwareSet::New() {
  return std::shared_ptr<NicSoftwareSet>(new NicSoftwareSet());
}

NicSoftwareSet::NicSoftwareSet() {
  SetDescription("Enable and disable software simulation settings on a NIC.");
}

NicSoftwareSet::~NicSoftwareSet() = default;

std::shared_ptr<InputSpec> NicSoftwareSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("Name of the ornic whose software similation settings should be updated.");
  spec->AddParameter(ornic);
  for (auto const& setting : kSoftwareSimulationSettings) {
    auto parameter = ParameterSpec::New(setting.parameter, ParameterType::Bool);
    parameter->SetRequired(false);
    parameter->SetDescription(setting.description);
    spec->AddParameter(parameter);
  }
  return spec;
}

std::shared_ptr<OutputSpec> NicSoftwareSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicSoftwareSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = networkInfo->GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("Pnic with name " + name + " not found");
      return;
    }
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
