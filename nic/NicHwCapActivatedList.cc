#include <memory>

#include "hostctl/network_info.h"
#include "nic/NicCommands.h"
#include "nic/NicFeatureKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(NicHwCapActivatedList, Rows)

NicHwCapActivatedList::NicHwCapActivatedList() {
  SetDescription("List activated hardware capabilities of physical NICs.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:Settings", "NIC,Device Hardware Cap Activated");
}

std::shared_ptr<MetaStruct> NicHwCapActivatedList::GetOutputStructure() {
  return HwCapStructure(kHwCapActivated);
}

std::shared_ptr<InputSpec> NicHwCapActivatedList::GetInputSpecInternal() {
  return InputSpecOf({NewOrnicListParameter()});
}

void NicHwCapActivatedList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                            std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto list = ListHwCaps(*networkInfo, *input, *output, kHwCapActivated);
    if (list) output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
