#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "nic/NicCommands.h"
#include "nic/OffloadKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(NicTsoSet, Bool)

NicTsoSet::NicTsoSet() { SetDescription("Set TCP segmentation offload settings on a nic"); }

std::shared_ptr<InputSpec> NicTsoSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(Shared::Ornic, "Name of ornic to set TSO settings."));
  auto enable = Required("enable", ParameterType::Int, "e", "TCP segmentation offload");
  auto range = ParameterConstraint::New(ParameterConstraintType::IntRange);
  range->SetIntRange(0, 1);
  enable->SetConstraint(range);
  spec->AddParameter(enable);
  return spec;
}

void NicTsoSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                std::shared_ptr<Output> const& output) {
  // Made ahead of the guarded block: a failure to reach the host is not
  // turned into a message here.
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  try {
    SetOffload(networkInfo, *input, *output, kSegmentationOffload);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
