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
}  // namespace

NETWORK_COMMAND_NEW(NicQueueLbSettingList, Rows)

NicQueueLbSettingList::NicQueueLbSettingList() {
  SetDescription(
      "List the load balancer settings of all the installed and loaded physical NICs. "
      "(S:supported, U:unsupported, N:not-applicable, A:allowed, D:disallowed).");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:Settings",
                            "NIC,RxQPair,RxQNoFeature,PreEmptibleQ,RxQLatency,RxDynamicLB,"
                            "DynamicQPool,MacLearnLB,RSS,LRO,GeneveOAM,RSSLRO");
}

std::shared_ptr<MetaStruct> NicQueueLbSettingList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField("NIC", MetaString::New());
  for (auto const& setting : kLbSettings) result->SetField(setting.column, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> NicQueueLbSettingList::GetInputSpecInternal() {
  return InputSpec::New();
}

void NicQueueLbSettingList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                            std::shared_ptr<Output> const& output) {
  try {
    ListNetqueueRows(
        *input, *output, false, MissingPnicWords::NotFound, [this] { return GetOutputStructure(); },
        [](MetaStruct& row, HostCtl::Network::PnicNetqueueInfo const& info) {
          for (int i = 0; i < HostCtl::Network::PnicNetqueueInfo::kSettingCount; ++i) {
            std::string letters;
            if (!kLbSettings[i].showsSupport) {
              letters = "N";
            } else {
              letters = info.supported[i] ? "S" : "U";
            }
            letters += info.allowed[i] ? "A" : "D";
            row.SetField(kLbSettings[i].column, letters);
          }
        });
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
