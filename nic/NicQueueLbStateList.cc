#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NetqueueKit.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kStructure = "NetqBalState";
const std::string kEnabled = "Enabled";
}  // namespace

NETWORK_COMMAND_NEW(NicQueueLbStateList, Rows)

NicQueueLbStateList::NicQueueLbStateList() {
  SetDescription(
      "Netqueue balancer state of all physical NICs currently installed and loaded on the system");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:NetqBalState", "NIC,Enabled");
}

std::shared_ptr<MetaStruct> NicQueueLbStateList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField("NIC", MetaString::New());
  result->SetField(kEnabled, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> NicQueueLbStateList::GetInputSpecInternal() {
  return InputSpecOf({Optional(Shared::Ornic, "The name of pnic to get netqueue balancer state")});
}

void NicQueueLbStateList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                          std::shared_ptr<Output> const& output) {
  try {
    ListNetqueueRows(
        *input, *output, true, MissingPnicWords::InvalidName,
        [this] { return GetOutputStructure(); },
        [](MetaStruct& row, HostCtl::Network::PnicNetqueueInfo const& info) {
          row.SetField(kEnabled, info.balancerEnabled);
        });
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
