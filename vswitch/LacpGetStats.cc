#include <string>

#include "hostctl/dvswitch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/LacpKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kDvs = "dvs";
const std::string kTypeName = "LACPStats";
const std::string kDVSwitch = "DVSwitch";
const std::string kNic = "NIC";
const std::string kLagId = "LAG ID";
const std::string kTxLacpdus = "Tx LACPDUs";
const std::string kTxErrors = "Tx Errors";
const std::string kRxLacpdus = "Rx LACPDUs";
const std::string kRxErrors = "Rx Errors";
// The directive names the type "LACP" and an "Uplink" field, blanks behind
// the commas included, and is registered so.
const std::string kDirectiveType = "LACP";
const std::string kFields =
    "Uplink, " + kTxLacpdus + ", " + kTxErrors + ", " + kRxLacpdus + ", " + kRxErrors;
constexpr size_t kTextWidth = 32;
}  // namespace

NETWORK_COMMAND_NEW(LacpGetStats, Rows)

LacpGetStats::LacpGetStats() {
  SetDescription("Get LACP stats on DVS uplinks");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kDirectiveType, kFields);
}

std::shared_ptr<MetaStruct> LacpGetStats::GetOutputStructure() {
  auto result = MetaStruct::New(kTypeName);
  result->SetField(kDVSwitch, MetaString::New());
  result->SetField(kNic, MetaString::New());
  for (auto const* field : {&kLagId, &kTxLacpdus, &kTxErrors, &kRxLacpdus, &kRxErrors}) {
    result->SetField(*field, MetaInt::New());
  }
  return result;
}

std::shared_ptr<InputSpec> LacpGetStats::GetInputSpecInternal() {
  return InputSpecOf({NewLacpDvsParameter(kDvs)});
}

void LacpGetStats::ExecuteInternal(std::shared_ptr<Input> const& input,
                                   std::shared_ptr<Output> const& output) {
  try {
    LacpSwitchList switches;
    if (!ChooseLacpSwitches(*input, *output, kDvs, switches)) return;
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    size_t groups = 0;
    size_t records = 0;
    for (auto const& dvs : switches) {
      for (auto const& group : dvs->GetLacpGroups()) {
        ++groups;
        for (auto const& record : group.ports) {
          ++records;
          auto row = GetOutputStructure();
          row->SetField(kDVSwitch, dvs->GetDvsName());
          row->SetField(kNic, LacpRecordText(record->nicName, kTextWidth));
          row->SetField(kLagId, static_cast<long>(group.lagId));
          // The 64-bit counters go to the frame's integers unchanged.
          row->SetField(kTxLacpdus, static_cast<long>(record->txLacpdus));
          row->SetField(kTxErrors, static_cast<long>(record->txErrors));
          row->SetField(kRxLacpdus, static_cast<long>(record->rxLacpdus));
          row->SetField(kRxErrors, static_cast<long>(record->rxErrors));
          list->Add(row);
        }
      }
    }
    if (groups == 0) {
      output->AddErrorMessage("No running LACP group on the host.");
      return;
    }
    if (records == 0) {
      output->AddErrorMessage("No pnic is connected to DVSwitch.");
      return;
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
