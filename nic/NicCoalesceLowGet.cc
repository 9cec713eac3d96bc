#include <memory>
#include <string>

#include "nic/CoalesceKit.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(NicCoalesceLowGet, Struct)

NicCoalesceLowGet::NicCoalesceLowGet() {
  SetDescription(
      "Get information about the behavior of a NIC when it sends or receives packets at low "
      "packet rate.");
  SetDefaultOutputFormatter("simple");
  for (auto const& [key, value] : BandDirectives(kLowBand)) SetDefaultOutputParameter(key, value);
}

std::shared_ptr<MetaStruct> NicCoalesceLowGet::GetOutputStructure() {
  return BandStructure(kLowBand);
}

std::shared_ptr<InputSpec> NicCoalesceLowGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::Ornic, "The name of the pnic for which information should be retrieved.")});
}

void NicCoalesceLowGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    output->SetRootObject(ReadBand(*input, kLowBand));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
