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
// The filter classes, in the order of the record.
char const* const kClasses[HostCtl::Network::PnicNetqueueInfo::kFilterClassCount] = {
    "MacOnly", "VlanOnly", "VlanMac", "Vxlan", "Geneve", "GenericEncap"};
}  // namespace

NETWORK_COMMAND_NEW(NicQueueFilterClassList, Rows)

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
  result->SetField("NIC", MetaString::New());
  for (char const* filterClass : kClasses) result->SetField(filterClass, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> NicQueueFilterClassList::GetInputSpecInternal() {
  return InputSpec::New();
}

void NicQueueFilterClassList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                              std::shared_ptr<Output> const& output) {
  try {
    ListNetqueueRows(
        *input, *output, false, MissingPnicWords::NotFound, [this] { return GetOutputStructure(); },
        [](MetaStruct& row, HostCtl::Network::PnicNetqueueInfo const& info) {
          for (int i = 0; i < HostCtl::Network::PnicNetqueueInfo::kFilterClassCount; ++i) {
            row.SetField(kClasses[i], info.filterClasses[i]);
          }
        });
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
