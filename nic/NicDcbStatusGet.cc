#include <iterator>
#include <memory>
#include <string>

#include "hostctl/dcb.h"
#include "hostctl/misc.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;
using HostCtl::Misc::StrPrintf;

namespace {

const std::string kStatus = "DCBStatus";
const std::string kStatusNicName = "Nic Name";
const std::string kMode = "Mode";
const std::string kEnabled = "Enabled";
const std::string kCapabilities = "Capabilities";
const std::string kPfcEnabled = "PFC Enabled";
const std::string kPfcConfiguration = "PFC Configuration";
const std::string kIeeePfc = "IEEE PFC Configuration";
const std::string kIeeeEts = "IEEE ETS Configuration";
const std::string kApps = "DCB Apps";

const std::string kCapabilitiesStructure = "DcbCapabilities";
const std::string kPriorityGroup = "Priority Group";
const std::string kPriorityFlowControl = "Priority Flow Control";
const std::string kUpToTcMap = "UP to TC Map";
const std::string kPgTrafficClasses = "PG Traffic Classes";
const std::string kPfcTrafficClasses = "PFC Traffic Classes";

const std::string kEtsStructure = "DcbIeeeEtsConfig";
const std::string kWilling = "Willing Bit In ETS Config TLV";
const std::string kCapacity = "Supported Capacity";
const std::string kCbs = "Credit Based Shaper ETS Algorithm Supported";
const std::string kTxBandwidth = "TX Bandwidth Per TC";
const std::string kRxBandwidth = "RX Bandwidth Per TC";
const std::string kTsa = "TSA Assignment Table Per TC";
const std::string kPriority = "Priority Assignment Per TC";
const std::string kRecBandwidth = "Recommended TC Bandwidth Per TC";
const std::string kRecBandwith = "Recommended TC Bandwith Per TC";
const std::string kRecTsa = "Recommended TSA Assignment Per TC";
const std::string kRecPriority = "Recommended Priority Assignment Per TC";

const std::string kPfcStructure = "DcbIeeePfcConfig";
const std::string kTrafficClasses = "Number Of Traffic Classes";
const std::string kMacsecBypass = "Macsec Bypass Capability Is Enabled";
const std::string kDelay = "Round Trip Propagation Delay Of Link";
const std::string kSentFrames = "Sent PFC Frames";
const std::string kReceivedFrames = "Received PFC Frames";

const std::string kAppsStructure = "DcbApps";
const std::string kAppType = "App Type";
const std::string kProtocolId = "Protocol ID";
const std::string kUserPriority = "User Priority";

char const* const kModeWords[] = {"Unknown", "CEN Mode", "CEE Mode", "IEEE Mode"};
}  // namespace

std::string DcbModeToString(unsigned int mode) {
  // The host reports 0 to 3; anything else reads as unknown.
  char const* word = mode < std::size(kModeWords) ? kModeWords[mode] : kModeWords[0];
  return StrPrintf("%d - %s", mode, word);
}

std::string DcbIntMaskToString(unsigned char mask) {
  return StrPrintf("%d %d %d %d %d %d %d %d", mask & 1, (mask >> 1) & 1, (mask >> 2) & 1,
                   (mask >> 3) & 1, (mask >> 4) & 1, (mask >> 5) & 1, (mask >> 6) & 1,
                   (mask >> 7) & 1);
}

std::string DcbArrayToString(unsigned char* array) {
  return StrPrintf("%d %d %d %d %d %d %d %d", array[0], array[1], array[2], array[3], array[4],
                   array[5], array[6], array[7]);
}

NETWORK_COMMAND_NEW(NicDcbStatusGet, Struct)

NicDcbStatusGet::NicDcbStatusGet() {
  SetDescription("Get the DCB information for a NIC.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:DCBStatus",
                            "Nic Name,Mode,Enabled,Capabilities,PFC Enabled,PFC Configuration,IEEE "
                            "ETS Configuration,IEEE PFC Configuration,DCB Apps");
  SetDefaultOutputParameter(
      "fields:DcbIeeeEtsConfig",
      "Willing Bit In ETS Config TLV,Supported Capacity,Credit Based Shaper ETS Algorithm "
      "Supported,TX Bandwidth Per TC,RX Bandwidth Per TC,TSA Assignment Table Per TC,Priority "
      "Assignment Per TC,Recommended TC Bandwidth Per TC,Recommended TSA Assignment Per "
      "TC,Recommended Priority Assignment Per TC");
  SetDefaultOutputParameter(
      "fields:DcbIeeePfcConfig",
      "Number Of Traffic Classes,PFC Configuration,Macsec Bypass Capability Is Enabled,Round Trip "
      "Propagation Delay Of Link,Sent PFC Frames,Received PFC Frames");
  SetDefaultOutputParameter("fields:DcbApps", "App Type,Protocol ID,User Priority");
  SetDefaultOutputParameter("fields:DcbCapabilities",
                            "Priority Group,Priority Flow Control,PG Traffic Classes,PFC Traffic "
                            "Classes");
}

std::shared_ptr<MetaStruct> NicDcbStatusGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStatus);
  result->SetField(kStatusNicName, MetaString::New());
  result->SetField(kMode, MetaString::New());
  result->SetField(kEnabled, MetaBool::New());
  result->SetField(kCapabilities, GetDcbCapabilitiesStructure());
  result->SetField(kPfcEnabled, MetaBool::New());
  result->SetField(kPfcConfiguration, MetaString::New());
  result->SetField(kIeeePfc, GetDcbIeeePfcConfigStructure());
  result->SetField(kIeeeEts, GetDcbIeeeEtsConfigStructure());
  result->SetField(kApps, MetaList::New(MetaType::Struct, GetDcbAppsStructure()));
  return result;
}

std::shared_ptr<MetaStruct> NicDcbStatusGet::GetDcbCapabilitiesStructure() {
  auto result = MetaStruct::New(kCapabilitiesStructure);
  result->SetField(kPriorityGroup, MetaBool::New());
  result->SetField(kPriorityFlowControl, MetaBool::New());
  result->SetField(kUpToTcMap, MetaBool::New());
  result->SetField(kPgTrafficClasses, MetaInt::New());
  result->SetField(kPfcTrafficClasses, MetaInt::New());
  return result;
}

std::shared_ptr<MetaStruct> NicDcbStatusGet::GetDcbIeeePfcConfigStructure() {
  auto result = MetaStruct::New(kPfcStructure);
  result->SetField(kTrafficClasses, MetaInt::New());
  result->SetField(kPfcConfiguration, MetaString::New());
  result->SetField(kMacsecBypass, MetaInt::New());
  result->SetField(kDelay, MetaInt::New());
  result->SetField(kSentFrames, MetaString::New());
  result->SetField(kReceivedFrames, MetaString::New());
  return result;
}

std::shared_ptr<MetaStruct> NicDcbStatusGet::GetDcbIeeeEtsConfigStructure() {
  auto result = MetaStruct::New(kEtsStructure);
  result->SetField(kWilling, MetaInt::New());
  result->SetField(kCapacity, MetaInt::New());
  result->SetField(kCbs, MetaString::New());
  result->SetField(kTxBandwidth, MetaString::New());
  result->SetField(kRxBandwidth, MetaString::New());
  result->SetField(kTsa, MetaString::New());
  result->SetField(kPriority, MetaString::New());
  result->SetField(kRecBandwidth, MetaString::New());
  result->SetField(kRecBandwith, MetaString::New());
  result->SetField(kRecTsa, MetaString::New());
  result->SetField(kRecPriority, MetaString::New());
  return result;
}

std::shared_ptr<MetaStruct> NicDcbStatusGet::GetDcbAppsStructure() {
  auto result = MetaStruct::New(kAppsStructure);
  result->SetField(kAppType, MetaString::New());
  result->SetField(kProtocolId, MetaString::New());
  result->SetField(kUserPriority, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> NicDcbStatusGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::NicName,
                "The name of the NIC for which you need the info. See \"nic list\" command.")});
}

void NicDcbStatusGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kNicName);
    OrvkCtl::Network::DcbInfoImpl dcb(name);
    auto status = GetOutputStructure();
    status->SetField(kStatusNicName, name);
    status->SetField(kMode, DcbModeToString(dcb.GetMode()));
    status->SetField(kEnabled, dcb.IsEnabled());

    auto const caps = dcb.GetCapabilities();
    auto capabilities = GetDcbCapabilitiesStructure();
    capabilities->SetField(kPriorityGroup, caps.priorityGroup != 0);
    capabilities->SetField(kPriorityFlowControl, caps.priorityFlowControl != 0);
    capabilities->SetField(kUpToTcMap, caps.upToTcMap != 0);
    capabilities->SetField(kPgTrafficClasses, static_cast<long>(caps.pgTrafficClasses));
    capabilities->SetField(kPfcTrafficClasses, static_cast<long>(caps.pfcTrafficClasses));
    status->SetField(kCapabilities, capabilities);

    status->SetField(kPfcEnabled, dcb.IsPfcEnabled());
    status->SetField(kPfcConfiguration, DcbIntMaskToString(dcb.GetPfcConfig()));

    auto etsConfig = dcb.GetIeeeEtsConfig();
    auto ets = GetDcbIeeeEtsConfigStructure();
    ets->SetField(kWilling, static_cast<long>(etsConfig.willing));
    ets->SetField(kCapacity, static_cast<long>(etsConfig.capacity));
    ets->SetField(kCbs, etsConfig.creditBasedShaperSupported);
    ets->SetField(kTxBandwidth, DcbArrayToString(etsConfig.txBandwidth));
    ets->SetField(kRxBandwidth, DcbArrayToString(etsConfig.rxBandwidth));
    ets->SetField(kTsa, DcbArrayToString(etsConfig.tsaAssignment));
    ets->SetField(kPriority, DcbArrayToString(etsConfig.priorityAssignment));
    ets->SetField(kRecBandwith, DcbArrayToString(etsConfig.recommendedTcBandwidth));
    ets->SetField(kRecBandwidth, DcbArrayToString(etsConfig.recommendedTcBandwidth));
    ets->SetField(kRecTsa, DcbArrayToString(etsConfig.recommendedTsaAssignment));
    ets->SetField(kRecPriority, DcbArrayToString(etsConfig.recommendedPriorityAssignment));
    status->SetField(kIeeeEts, ets);

    auto pfcConfig = dcb.GetIeeePfcConfig();
    auto pfc = GetDcbIeeePfcConfigStructure();
    pfc->SetField(kTrafficClasses, static_cast<long>(pfcConfig.trafficClasses));
    pfc->SetField(kPfcConfiguration, DcbIntMaskToString(pfcConfig.pfcMask));
    pfc->SetField(kMacsecBypass, static_cast<long>(pfcConfig.macsecBypass));
    pfc->SetField(kDelay, static_cast<long>(pfcConfig.delay));
    pfc->SetField(kSentFrames, DcbArrayToString(pfcConfig.sentFrames));
    pfc->SetField(kReceivedFrames, DcbArrayToString(pfcConfig.receivedFrames));
    status->SetField(kIeeePfc, pfc);

    auto apps = MetaList::New(MetaType::Struct, GetDcbAppsStructure());
    for (auto const& app : dcb.GetAppInfo()) {
      auto row = GetDcbAppsStructure();
      row->SetField(kAppType, app.appType);
      row->SetField(kProtocolId, app.protocolId);
      row->SetField(kUserPriority, app.userPriority);
      apps->Add(row);
    }
    status->SetField(kApps, apps);
    output->SetRootObject(status);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
