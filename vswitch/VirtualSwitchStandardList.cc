#include <algorithm>
#include <string>
#include <vector>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/UplinkKit.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kName = "Name";
const std::string kClass = "Class";
const std::string kNumPorts = "Num Ports";
const std::string kUsedPorts = "Used Ports";
const std::string kConfiguredPorts = "Configured Ports";
const std::string kMtu = "MTU";
const std::string kCdpStatus = "CDP Status";
const std::string kBeaconEnabled = "Beacon Enabled";
const std::string kBeaconInterval = "Beacon Interval";
const std::string kBeaconThreshold = "Beacon Threshold";
const std::string kBeaconRequiredBy = "Beacon Required By";
const std::string kUplinks = "Uplinks";
const std::string kPortgroups = "Portgroups";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchStandardList, Rows)

VirtualSwitchStandardList::VirtualSwitchStandardList() {
  SetDescription("List the virtual switches current on the Haldeni host.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:VirtualSwitch", "%Name%");
  SetDefaultOutputParameter("fields:VirtualSwitch",
                            "Name,Class,Num Ports,Used Ports,Configured Ports,MTU,CDP Status,"
                            "Beacon Enabled,Beacon Interval,Beacon Threshold,Beacon Required By,"
                            "Uplinks,Portgroups");
}

std::shared_ptr<MetaStruct> VirtualSwitchStandardList::GetOutputStructure() {
  auto result = MetaStruct::New("VirtualSwitch");
  result->SetField(kName, MetaString::New());
  result->SetField(kClass, MetaString::New());
  result->SetField(kNumPorts, MetaInt::New());
  result->SetField(kUsedPorts, MetaInt::New());
  result->SetField(kConfiguredPorts, MetaInt::New());
  result->SetField(kMtu, MetaInt::New());
  result->SetField(kCdpStatus, MetaString::New());
  result->SetField(kBeaconEnabled, MetaBool::New());
  result->SetField(kBeaconInterval, MetaInt::New());
  result->SetField(kBeaconThreshold, MetaInt::New());
  result->SetField(kBeaconRequiredBy, MetaList::New(Toolbase::MetaObj::String));
  result->SetField(kUplinks, MetaList::New(Toolbase::MetaObj::String));
  result->SetField(kPortgroups, MetaList::New(Toolbase::MetaObj::String));
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchStandardList::GetInputSpecInternal() {
  return InputSpecOf(
      {Optional(Shared::VswitchName,
                "Limit the output of this command to only virtual switches with the given name.")});
}

void VirtualSwitchStandardList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    std::vector<std::unique_ptr<HostCtl::Network::VirtualSwitch>> switches;
    if (input->HasParameter(kVswitchName)) {
      switches.push_back(switchInfo.GetVirtualSwitchByName(input->GetParameter(kVswitchName)));
    } else {
      switches = switchInfo.GetVirtualSwitches();
    }

    std::vector<std::string> const pnicNames = HostPnicNames();

    auto result = MetaList::New(Toolbase::MetaObj::Struct, GetOutputStructure());
    for (auto const& entry : switches) {
      auto* vswitch = dynamic_cast<OrvkCtl::Network::VirtualSwitchImpl*>(entry.get());
      if (!vswitch) {
        output->AddErrorMessage("Unable to access all portsets");
        break;
      }
      auto record = GetOutputStructure();
      record->SetField(kName, vswitch->GetName());
      record->SetField(kClass, vswitch->GetClass());
      record->SetField(kNumPorts, vswitch->GetNumPorts());
      record->SetField(kUsedPorts, vswitch->GetNumUsedPorts());
      record->SetField(kConfiguredPorts, vswitch->GetNumConfiguredPorts());
      record->SetField(kMtu, vswitch->GetMTU());
      record->SetField(kCdpStatus, vswitch->GetCdpStatusString());
      record->SetField(kBeaconEnabled, vswitch->IsBeaconEnabled());
      record->SetField(kBeaconInterval, vswitch->GetBeaconInterval());
      record->SetField(kBeaconThreshold, vswitch->GetBeaconThreshold());
      record->SetField(kBeaconRequiredBy, vswitch->NeedBeacon());

      record->SetField(kUplinks, PhysicalUplinks(vswitch->GetUplinks(), pnicNames));

      std::vector<std::string> groupNames;
      for (auto const& group : vswitch->GetPortGroups()) groupNames.push_back(group->GetName());
      record->SetField(kPortgroups, groupNames);
      result->Add(record);
    }
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
