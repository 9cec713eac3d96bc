#include <memory>
#include <string>

#include "nic/CoalesceKit.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(NicCoalesceHighGet, Struct)

NicCoalesceHighGet::NicCoalesceHighGet() {
  SetDescription(
      "Get information about the behavior of a NIC when it sends or receives packets at high "
      "packet rate.");
  SetDefaultOutputFormatter("simple");
  for (auto const& [key, value] : BandDirectives(kHighBand)) SetDefaultOutputParameter(key, value);
}

std::shared_ptr<MetaStruct> NicCoalesceHighGet::GetOutputStructure() {
  return BandStructure(kHighBand);
}

std::shared_ptr<InputSpec> NicCoalesceHighGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::Ornic, "The name of the pnic for which information should be retrieved.")});
}

void NicCoalesceHighGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  try {
    output->SetRootObject(ReadBand(*input, kHighBand));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
