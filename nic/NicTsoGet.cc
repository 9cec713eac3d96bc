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

NETWORK_COMMAND_NEW(NicTsoGet, Rows)

NicTsoGet::NicTsoGet() {
  SetDescription("Get TCP segmentation offload settings");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(std::string("fields:") + kSegmentationOffload.structure,
                            OffloadFields(kSegmentationOffload));
}

std::shared_ptr<MetaStruct> NicTsoGet::GetOutputStructure() {
  return OffloadStructure(kSegmentationOffload);
}

std::shared_ptr<InputSpec> NicTsoGet::GetInputSpecInternal() {
  return InputSpecOf({Optional(Shared::Ornic, "The name of pnic to get TSO settings")});
}

void NicTsoGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto list = ListOffload(networkInfo, *input, *output, kSegmentationOffload);
    if (list) output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
