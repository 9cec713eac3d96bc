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

NETWORK_COMMAND_NEW(NicCsoGet, Rows)

NicCsoGet::NicCsoGet() {
  SetDescription("Get checksum offload settings");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(std::string("fields:") + kChecksumOffload.structure,
                            OffloadFields(kChecksumOffload));
}

std::shared_ptr<MetaStruct> NicCsoGet::GetOutputStructure() {
  return OffloadStructure(kChecksumOffload);
}

std::shared_ptr<InputSpec> NicCsoGet::GetInputSpecInternal() {
  return InputSpecOf({Optional(Shared::Ornic, "The name of pnic to get CSO settings")});
}

void NicCsoGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto list = ListOffload(networkInfo, *input, *output, kChecksumOffload);
    if (list) output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
