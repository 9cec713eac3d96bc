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

NETWORK_COMMAND_NEW(NicCsoSet, Bool)

NicCsoSet::NicCsoSet() { SetDescription("Set checksum offload settings on a nic"); }

std::shared_ptr<InputSpec> NicCsoSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(Shared::Ornic, "Name of ornic to set offload settings."));
  auto enable = Required("enable", ParameterType::Int, "e", "RX/TX checksum offload");
  auto range = ParameterConstraint::New(ParameterConstraintType::IntRange);
  range->SetIntRange(0, 1);
  enable->SetConstraint(range);
  spec->AddParameter(enable);
  return spec;
}

void NicCsoSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    SetOffload(networkInfo, *input, *output, kChecksumOffload);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
