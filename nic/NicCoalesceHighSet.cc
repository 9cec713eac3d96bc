#include <memory>

#include "nic/CoalesceKit.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(NicCoalesceHighSet, Bool)

NicCoalesceHighSet::NicCoalesceHighSet() {
  SetDescription(
      "Set parameters to control the behavior of a NIC when it sends or receives packets at "
      "high packet rate.");
}

std::shared_ptr<InputSpec> NicCoalesceHighSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  AddBandParameters(*spec, kHighBand);
  return spec;
}

void NicCoalesceHighSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  try {
    WriteBand(*input, *output, kHighBand);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
