#include "nic/NicTsoSet.h"

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

std::shared_ptr<NicTsoSet> NicTsoSet::New() { return std::shared_ptr<NicTsoSet>(new NicTsoSet()); }

NicTsoSet::NicTsoSet() { SetDescription("Set TCP segmentation offload settings on a nic"); }

NicTsoSet::~NicTsoSet() = default;

std::shared_ptr<InputSpec> NicTsoSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("Name of ornic to set TSO settings.");
  spec->AddParameter(ornic);
  auto enable = ParameterSpec::New(kEnable, ParameterType::Int);
  enable->SetRequired(true);
  enable->SetShortName("e");
  enable->SetDescription("TCP segmentation offload");
  auto range = ParameterConstraint::New(ParameterConstraintType::IntRange);
  range->SetIntRange(0, 1);
  enable->SetConstraint(range);
  spec->AddParameter(enable);
  return spec;
}

std::shared_ptr<OutputSpec> NicTsoSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicTsoSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                std::shared_ptr<Output> const& output) {
  // Made ahead of the guarded block: a failure to reach the host is not
  // turned into a message here.
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  try {
    std::string const& name = input->GetParameter(kOrnic);
    auto pnic = networkInfo.GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("Pnic with name " + name + " not found");
      return;
    }
    HostCtl::Network::PnicOffloadParams params;
    pnic->GetOffloadParams(params);
    bool const enable = input->GetParameterInt(kEnable) != 0;
    params.mask = HostCtl::Network::PnicOffloadParams::MASK_TCP_SEGMENTATION;
    params.tcpSegmentation = enable;
    pnic->SetOffloadParams(params);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
