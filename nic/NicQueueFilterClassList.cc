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
const std::string kStructure = "Settings";
const std::string kNic = "NIC";
// The filter classes, in the order of the record.
char const* const kClasses[HostCtl::Network::PnicNetqueueInfo::kFilterClassCount] = {
    "MacOnly", "VlanOnly", "VlanMac", "Vxlan", "Geneve", "GenericEncap"};
}  // namespace

NETWORK_COMMAND_NEW(NicQueueFilterClassList)

NicQueueFilterClassList::NicQueueFilterClassList() {
  SetDescription(
      "List the netqueue supported filterclass of all physical NICs currently installed and "
      "loaded on the system.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:Settings",
                            "NIC,MacOnly,VlanOnly,VlanMac,Vxlan,Geneve,GenericEncap");
}

std::shared_ptr<MetaStruct> NicQueueFilterClassList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  for (char const* filterClass : kClasses) result->SetField(filterClass, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> NicQueueFilterClassList::GetInputSpecInternal() {
  return InputSpec::New();
}

std::shared_ptr<OutputSpec> NicQueueFilterClassList::GetOutputSpecInternal() {
  return RootSpec(MetaList::New(MetaType::Struct, GetOutputStructure()));
}

void NicQueueFilterClassList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                              std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    bool const done = WalkNetqueue(
        *networkInfo, *input, *output, false, MissingPnicWords::NotFound,
        [&](HostCtl::Network::Pnic& pnic, HostCtl::Network::PnicNetqueueInfo const& info) {
          auto row = GetOutputStructure();
          row->SetField(kNic, pnic.GetName());
          for (int i = 0; i < HostCtl::Network::PnicNetqueueInfo::kFilterClassCount; ++i) {
            row->SetField(kClasses[i], info.filterClasses[i]);
          }
          list->Add(row);
        });
    if (!done) return;
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
