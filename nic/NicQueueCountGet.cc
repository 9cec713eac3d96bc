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
const std::string kStructure = "NetqueueCount";
const std::string kTxCount = "Tx netqueue count";
const std::string kRxCount = "Rx netqueue count";
}  // namespace

NETWORK_COMMAND_NEW(NicQueueCountGet, Rows)

NicQueueCountGet::NicQueueCountGet() {
  SetDescription("Get netqueue count on a nic");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:NetqueueCount", "NIC,Tx netqueue count,Rx netqueue count");
}

std::shared_ptr<MetaStruct> NicQueueCountGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField("NIC", MetaString::New());
  result->SetField(kTxCount, MetaInt::New());
  result->SetField(kRxCount, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> NicQueueCountGet::GetInputSpecInternal() {
  return InputSpecOf({Optional(Shared::Ornic, "The name of pnic to get netqueue count")});
}

void NicQueueCountGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                       std::shared_ptr<Output> const& output) {
  try {
    ListNetqueueRows(
        *input, *output, true, MissingPnicWords::NotFound, [this] { return GetOutputStructure(); },
        [](MetaStruct& row, HostCtl::Network::PnicNetqueueInfo const& info) {
          row.SetField(kTxCount, static_cast<long>(info.txQueueCount));
          row.SetField(kRxCount, static_cast<long>(info.rxQueueCount));
        });
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
