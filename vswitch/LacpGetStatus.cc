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
const std::string kLagType = "LAG";
const std::string kNicStatusType = "NicStatus";
const std::string kLocalInfoType = "LocalInfo";
const std::string kPartnerInfoType = "PartnerInfo";
const std::string kDVSwitch = "DVSwitch";
const std::string kLagId = "LAG ID";
const std::string kMode = "Mode";
const std::string kFlags = "Flags";
const std::string kNicList = "Nic List";
const std::string kNic = "Nic";
const std::string kState = "State";
const std::string kLocalInformation = "Local Information";
const std::string kPartnerInformation = "Partner Information";
const std::string kPortState = "Port State";
const std::string kAdminKey = "Admin Key";
const std::string kOperKey = "Oper Key";
const std::string kPortPriority = "Port Priority";
const std::string kPortNumber = "Port Number";
const std::string kDeviceId = "Device ID";
const std::string kAge = "Age";
const std::string kNone = "<NONE>";
// The LAG columns name an "Age" that the LAG record does not have.
const std::string kLagColumns =
    kDVSwitch + "," + kLagId + "," + kMode + "," + kAge + "," + kFlags + "," + kNicList;
const std::string kNicColumns =
    kNic + "," + kState + "," + kLocalInformation + "," + kPartnerInformation;
const std::string kLocalColumns = kFlags + "," + kAdminKey + "," + kOperKey + "," + kPortPriority +
                                  "," + kPortNumber + "," + kPortState;
const std::string kPartnerColumns = kDeviceId + "," + kAge + "," + kFlags + "," + kOperKey + "," +
                                    kPortPriority + "," + kPortNumber + "," + kPortState;
char const* const kLegend[] = {
    "S - Device is sending Slow LACPDUs",
    "F - Device is sending fast LACPDUs",
    "A - Device is in active mode",
    "P - Device is in passive mode",
};
constexpr size_t kTextWidth = 32;
}  // namespace

NETWORK_COMMAND_NEW(LacpGetStatus, Rows)

LacpGetStatus::LacpGetStatus() {
  SetDescription("Get LACP status on DVS");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:" + kLagType, "%" + kDVSwitch + "%");
  SetDefaultOutputParameter("header:" + kNicStatusType, kNone);
  SetDefaultOutputParameter("header:" + kLocalInfoType, kNone);
  SetDefaultOutputParameter("header:" + kPartnerInfoType, kNone);
  SetDefaultOutputParameter("table-columns:" + kLagType, kLagColumns);
  SetDefaultOutputParameter("table-columns:" + kNicStatusType, kNicColumns);
  SetDefaultOutputParameter("table-columns:" + kLocalInfoType, kLocalColumns);
  SetDefaultOutputParameter("table-columns:" + kPartnerInfoType, kPartnerColumns);
}

std::shared_ptr<MetaStruct> LacpGetStatus::GetLACPLocalInfoStruct() {
  auto result = MetaStruct::New(kLocalInfoType);
  result->SetField(kPortState, MetaString::New());
  result->SetField(kFlags, MetaString::New());
  result->SetField(kAdminKey, MetaInt::New());
  result->SetField(kOperKey, MetaInt::New());
  result->SetField(kPortPriority, MetaInt::New());
  result->SetField(kPortNumber, MetaInt::New());
  return result;
}

std::shared_ptr<MetaStruct> LacpGetStatus::GetLACPPartnerInfoStruct() {
  auto result = MetaStruct::New(kPartnerInfoType);
  result->SetField(kDeviceId, MetaString::New());
  result->SetField(kPortState, MetaString::New());
  result->SetField(kFlags, MetaString::New());
  result->SetField(kAge, MetaString::New());
  result->SetField(kOperKey, MetaInt::New());
  result->SetField(kPortPriority, MetaInt::New());
  result->SetField(kPortNumber, MetaInt::New());
  return result;
}

std::shared_ptr<MetaStruct> LacpGetStatus::GetLACPNicInfoStruct() {
  auto result = MetaStruct::New(kNicStatusType);
  result->SetField(kNic, MetaString::New());
  result->SetField(kState, MetaString::New());
  result->SetField(kLocalInformation, GetLACPLocalInfoStruct());
  result->SetField(kPartnerInformation, GetLACPPartnerInfoStruct());
  return result;
}

std::shared_ptr<MetaStruct> LacpGetStatus::GetOutputStructure() {
  auto result = MetaStruct::New(kLagType);
  result->SetField(kDVSwitch, MetaString::New());
  result->SetField(kLagId, MetaInt::New());
  result->SetField(kMode, MetaString::New());
  result->SetField(kFlags, MetaList::New(MetaType::String));
  result->SetField(kNicList, MetaList::New(MetaType::Struct, GetLACPNicInfoStruct()));
  return result;
}

std::shared_ptr<InputSpec> LacpGetStatus::GetInputSpecInternal() {
  return InputSpecOf({NewLacpDvsParameter(kDvs)});
}

void LacpGetStatus::ExecuteInternal(std::shared_ptr<Input> const& input,
                                    std::shared_ptr<Output> const& output) {
  try {
    LacpSwitchList switches;
    if (!ChooseLacpSwitches(*input, *output, kDvs, switches)) return;
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    for (auto const& dvs : switches) {
      for (auto const& group : dvs->GetLacpGroups()) {
        auto lag = GetOutputStructure();
        auto nics = MetaList::New(MetaType::Struct, GetLACPNicInfoStruct());
        lag->SetField(kDVSwitch, dvs->GetDvsName());
        lag->SetField(kLagId, static_cast<long>(group.lagId));
        lag->SetField(kMode, group.mode == 2 ? "Passive" : "Active");
        auto legend = MetaList::New(MetaType::String);
        for (char const* line : kLegend) legend->Add(line);
        lag->SetField(kFlags, legend);
        for (auto const& record : group.ports) {
          auto nic = GetLACPNicInfoStruct();
          nic->SetField(kNic, LacpRecordText(record->nicName, kTextWidth));
          nic->SetField(kState, LacpRecordText(record->state, kTextWidth));
          auto local = GetLACPLocalInfoStruct();
          local->SetField(kFlags, LacpRecordText(record->localFlags, kTextWidth));
          local->SetField(kAdminKey, static_cast<long>(record->localAdminKey));
          local->SetField(kOperKey, static_cast<long>(record->localOperKey));
          local->SetField(kPortPriority, static_cast<long>(record->localPortPriority));
          local->SetField(kPortNumber, static_cast<long>(record->localPortNumber));
          local->SetField(kPortState, LacpPortStateText(record->localPortState));
          auto partner = GetLACPPartnerInfoStruct();
          partner->SetField(kPortState, LacpPortStateText(record->partnerPortState));
          partner->SetField(kFlags, LacpRecordText(record->partnerFlags, kTextWidth));
          partner->SetField(kDeviceId, LacpRecordText(record->partnerDeviceId, kTextWidth));
          partner->SetField(kAge, LacpAgeText(record->partnerAge));
          partner->SetField(kOperKey, static_cast<long>(record->partnerOperKey));
          partner->SetField(kPortPriority, static_cast<long>(record->partnerPortPriority));
          partner->SetField(kPortNumber, static_cast<long>(record->partnerPortNumber));
          nic->SetField(kLocalInformation, local);
          nic->SetField(kPartnerInformation, partner);
          nics->Add(nic);
        }
        lag->SetField(kNicList, nics);
        list->Add(lag);
      }
    }
    if (list->GetCount() == 0) {
      output->AddErrorMessage("No running LACP group on the host.");
      return;
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
