#include <memory>

#include "nic/CoalesceKit.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(NicCoalesceLowSet, Bool)

NicCoalesceLowSet::NicCoalesceLowSet() {
  SetDescription(
      "Set parameters to control the behavior of a NIC when it sends or receives packets at "
      "low packet rate.");
}

std::shared_ptr<InputSpec> NicCoalesceLowSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  AddBandParameters(*spec, kLowBand);
  return spec;
}

void NicCoalesceLowSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    WriteBand(*input, *output, kLowBand);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
