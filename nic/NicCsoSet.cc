#include "nic/NicCsoSet.h"

#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kOrnic = "ornic";
const std::string kEnable = "enable";
}  // namespace

std::shared_ptr<NicCsoSet> NicCsoSet::New() { return std::shared_ptr<NicCsoSet>(new NicCsoSet()); }

NicCsoSet::NicCsoSet() { SetDescription("Set checksum offload settings on a nic"); }

NicCsoSet::~NicCsoSet() = default;

std::shared_ptr<InputSpec> NicCsoSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("Name of ornic to set offload settings.");
  spec->AddParameter(ornic);
  auto enable = ParameterSpec::New(kEnable, ParameterType::Int);
  enable->SetRequired(true);
  enable->SetShortName("e");
  enable->SetDescription("RX/TX checksum offload");
  auto range = ParameterConstraint::New(ParameterConstraintType::IntRange);
  range->SetIntRange(0, 1);
  enable->SetConstraint(range);
  spec->AddParameter(enable);
  return spec;
}

std::shared_ptr<OutputSpec> NicCsoSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicCsoSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    std::string const& name = input->GetParameter(kOrnic);
    auto pnic = networkInfo.GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("Pnic with name " + name + " not found");
      return;
    }
    HostCtl::Network::PnicOffloadParams params;
    pnic->GetOffloadParams(params);
    bool const enable = input->GetParameterInt(kEnable) != 0;
    params.mask = HostCtl::Network::PnicOffloadParams::MASK_RX_CHECKSUM |
                  HostCtl::Network::PnicOffloadParams::MASK_TX_CHECKSUM;
    params.rxChecksum = enable;
    params.txChecksum = enable;
    pnic->SetOffloadParams(params);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
