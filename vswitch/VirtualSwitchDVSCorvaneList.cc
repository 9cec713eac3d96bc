#include <algorithm>
#include <string>
#include <vector>

#include "hostctl/dvswitch.h"
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
const std::string kKdsName = "kds-name";
const std::string kName = "Name";
const std::string kKdsId = "KDS ID";
const std::string kClass = "Class";
const std::string kNumPorts = "Num Ports";
const std::string kUsedPorts = "Used Ports";
const std::string kConfiguredPorts = "Configured Ports";
const std::string kMtu = "MTU";
const std::string kCdpStatus = "CDP Status";
const std::string kBeaconTimeout = "Beacon Timeout";
const std::string kUplinks = "Uplinks";
const std::string kCorvaneBranded = "Corvane Branded";
const std::string kDVPort = "DVPort";
const std::string kPortId = "Port ID";
const std::string kInUse = "In Use";
const std::string kDVPortgroupId = "DVPortgroup ID";
const std::string kClient = "Client";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchDVSCorvaneList, Rows)

VirtualSwitchDVSCorvaneList::VirtualSwitchDVSCorvaneList() {
  SetDescription(
      "List the Corvane Tamarisk Distributed Switch currently configured on the Haldeni host.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:KDS", "%Name%");
  SetDefaultOutputParameter("table-columns",
                            "Name,KDS ID,Class,Num Ports,Used Ports,Configured Ports,MTU,CDP "
                            "Status,Beacon Timeout,Uplinks,Corvane Branded,DVPort");
}

std::shared_ptr<MetaStruct> VirtualSwitchDVSCorvaneList::GetDVPortStructure() {
  auto result = MetaStruct::New("DVPort");
  result->SetField(kPortId, MetaString::New());
  result->SetField(kInUse, MetaBool::New());
  result->SetField(kDVPortgroupId, MetaString::New());
  result->SetField(kClient, MetaList::New(MetaType::String));
  return result;
}

std::shared_ptr<MetaStruct> VirtualSwitchDVSCorvaneList::GetOutputStructure() {
  auto result = MetaStruct::New("KDS");
  result->SetField(kName, MetaString::New());
  result->SetField(kKdsId, MetaString::New());
  result->SetField(kClass, MetaString::New());
  result->SetField(kNumPorts, MetaInt::New());
  result->SetField(kUsedPorts, MetaInt::New());
  result->SetField(kConfiguredPorts, MetaInt::New());
  result->SetField(kMtu, MetaInt::New());
  result->SetField(kCdpStatus, MetaString::New());
  result->SetField(kBeaconTimeout, MetaInt::New());
  result->SetField(kUplinks, MetaList::New(MetaType::String));
  result->SetField(kCorvaneBranded, MetaBool::New());
  result->SetField(kDVPort, MetaList::New(MetaType::Struct, GetDVPortStructure()));
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchDVSCorvaneList::GetInputSpecInternal() {
  return InputSpecOf(
      {Optional(kKdsName, ParameterType::String, "v",
                "Limit the output of this command to only kDS with the given name.")});
}

std::shared_ptr<MetaList> VirtualSwitchDVSCorvaneList::GetDVPortList(
    std::vector<std::unique_ptr<HostCtl::Network::DVPort>> const& ports) {
  auto list = MetaList::New(MetaType::Struct, GetDVPortStructure());
  for (auto const& entry : ports) {
    auto* port = dynamic_cast<OrvkCtl::Network::DVPortImpl*>(entry.get());
    if (!port) continue;
    std::vector<std::string> clients;
    bool inUse = port->IsInUse(clients);
    auto record = GetDVPortStructure();
    record->SetField(kPortId, port->portId);
    record->SetField(kInUse, inUse);
    record->SetField(kDVPortgroupId, port->GetDVPortgroupId());
    record->SetField(kClient, clients);
    list->Add(record);
  }
  return list;
}

void VirtualSwitchDVSCorvaneList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                  std::shared_ptr<Output> const& output) {
  try {
    // An absent option and an empty one both mean all switches.
    std::string const name =
        input->HasParameter(kKdsName) ? input->GetParameter(kKdsName) : std::string();
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    std::vector<std::unique_ptr<HostCtl::Network::DVSwitch>> switches;
    if (name.empty()) {
      switches = switchInfo.GetDVSwitches();
    } else {
      switches.push_back(HostCtl::Network::NetworkFactory::GetDVSwitchByName(name));
    }

    std::vector<std::string> const pnicNames = HostPnicNames();

    auto result = MetaList::New(MetaType::Struct, GetOutputStructure());
    for (auto const& entry : switches) {
      auto* dvs = dynamic_cast<OrvkCtl::Network::DVSwitchImpl*>(entry.get());
      if (!dvs) {
        output->AddErrorMessage("Unable to access all kDS");
        break;
      }
      auto record = GetOutputStructure();
      record->SetField(kName, dvs->GetDvsName());
      record->SetField(kKdsId, dvs->GetDvsId());
      record->SetField(kClass, dvs->GetClass());
      record->SetField(kNumPorts, dvs->GetNumPorts());
      record->SetField(kUsedPorts, dvs->GetNumUsedPorts());
      record->SetField(kConfiguredPorts, dvs->GetNumConfiguredPorts());
      record->SetField(kMtu, dvs->GetMTU());
      record->SetField(kCdpStatus, dvs->GetCdpStatusString());
      record->SetField(kBeaconTimeout, dvs->GetBeaconTimeout());
      record->SetField(kCorvaneBranded, dvs->IsCorvaneBranded());
      record->SetField(kDVPort, GetDVPortList(dvs->GetDVPorts()));

      record->SetField(kUplinks, PhysicalUplinks(dvs->GetUplinks(), pnicNames));
      result->Add(record);
    }
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
