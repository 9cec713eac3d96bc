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
const std::string kNic = "NIC";
const std::string kEnabled = "Enabled";
}  // namespace

NETWORK_COMMAND_NEW(NicQueueLbStateList)

NicQueueLbStateList::NicQueueLbStateList() {
  SetDescription(
      "Netqueue balancer state of all physical NICs currently installed and loaded on the system");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:NetqBalState", "NIC,Enabled");
}

std::shared_ptr<MetaStruct> NicQueueLbStateList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  result->SetField(kEnabled, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> NicQueueLbStateList::GetInputSpecInternal() {
  return InputSpecOf({Optional(Shared::Ornic, "The name of pnic to get netqueue balancer state")});
}

std::shared_ptr<OutputSpec> NicQueueLbStateList::GetOutputSpecInternal() {
  return RootSpec(MetaList::New(MetaType::Struct, GetOutputStructure()));
}

void NicQueueLbStateList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                          std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    bool const done = WalkNetqueue(
        *networkInfo, *input, *output, true, MissingPnicWords::InvalidName,
        [&](HostCtl::Network::Pnic& pnic, HostCtl::Network::PnicNetqueueInfo const& info) {
          auto row = GetOutputStructure();
          row->SetField(kNic, pnic.GetName());
          row->SetField(kEnabled, info.balancerEnabled);
          list->Add(row);
        });
    if (!done) return;
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
