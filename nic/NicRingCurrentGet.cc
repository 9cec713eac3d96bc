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

NETWORK_COMMAND_NEW(NicRingCurrentGet, Struct)

NicRingCurrentGet::NicRingCurrentGet() {
  SetDescription("Get current RX/TX ring buffer parameters of a NIC");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter(kRingFieldsDirective, RingFields(RingView::Current));
}

std::shared_ptr<MetaStruct> NicRingCurrentGet::GetOutputStructure() {
  return RingStructure(RingView::Current);
}

std::shared_ptr<InputSpec> NicRingCurrentGet::GetInputSpecInternal() {
  return InputSpecOf({Required(
      Shared::NicName,
      "The name of the NIC whose current RX/TX ring buffer parameters should be retrieved.")});
}

void NicRingCurrentGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto result = GetOutputStructure();
    if (ReadRing(*networkInfo, *input, *output, RingView::Current, *result)) {
      output->SetRootObject(result);
    }
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
