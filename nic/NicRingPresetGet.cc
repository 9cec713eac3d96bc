#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "nic/NicCommands.h"
#include "nic/RingKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(NicRingPresetGet, Struct)

NicRingPresetGet::NicRingPresetGet() {
  SetDescription("Get preset maximums for RX/TX ring buffer parameters of a NIC.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter(kRingFieldsDirective, RingFields(RingView::Preset));
}

std::shared_ptr<MetaStruct> NicRingPresetGet::GetOutputStructure() {
  return RingStructure(RingView::Preset);
}

std::shared_ptr<InputSpec> NicRingPresetGet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::NicName,
                               "The name of the NIC whose preset maximums for RX/TX ring buffer "
                               "parameters should be retrieved.")});
}

void NicRingPresetGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                       std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto result = GetOutputStructure();
    if (ReadRing(*networkInfo, *input, *output, RingView::Preset, *result)) {
      output->SetRootObject(result);
    }
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
