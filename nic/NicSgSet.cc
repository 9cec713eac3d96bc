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

NETWORK_COMMAND_NEW(NicSgSet, Bool)

NicSgSet::NicSgSet() { SetDescription("Set scatter-gatter settings on a nic"); }

std::shared_ptr<InputSpec> NicSgSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(
      Required(Shared::Ornic, "Name of ornic to configure scatter-gather settings."));
  auto enable = Required("enable", ParameterType::Int, "e", "Enable/disable sacatter-gather");
  auto range = ParameterConstraint::New(ParameterConstraintType::IntRange);
  range->SetIntRange(0, 1);
  enable->SetConstraint(range);
  spec->AddParameter(enable);
  return spec;
}

void NicSgSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                               std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    SetOffload(networkInfo, *input, *output, kScatterGather);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
