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

NETWORK_COMMAND_NEW(NicSgGet, Rows)

NicSgGet::NicSgGet() {
  SetDescription("Get scatter-gather settings");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(std::string("fields:") + kScatterGather.structure,
                            OffloadFields(kScatterGather));
}

std::shared_ptr<MetaStruct> NicSgGet::GetOutputStructure() {
  return OffloadStructure(kScatterGather);
}

std::shared_ptr<InputSpec> NicSgGet::GetInputSpecInternal() {
  return InputSpecOf({Optional(Shared::Ornic, "The name of pnic to get scatter-gather settings")});
}

void NicSgGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                               std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto list = ListOffload(networkInfo, *input, *output, kScatterGather);
    if (list) output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
