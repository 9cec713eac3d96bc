#include <memory>
#include <string>
#include <vector>

#include "hostctl/virtual_switch.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kStructure = "NIC";
const std::string kVlanId = "VLAN ID";
const std::string kPacketsReceived = "Packets received";
const std::string kPacketsSent = "Packets sent";
}  // namespace

NETWORK_COMMAND_NEW(NicVlanStatsGet, Rows)

NicVlanStatsGet::NicVlanStatsGet() {
  SetDescription("List VLAN statistics for active VLAN's on the NIC.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:" + kStructure, "VLAN %" + kVlanId + "%");
  SetDefaultOutputParameter("fields:" + kStructure, kPacketsReceived + "," + kPacketsSent);
}

std::shared_ptr<MetaStruct> NicVlanStatsGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kVlanId, MetaInt::New());
  result->SetField(kPacketsReceived, MetaInt::New());
  result->SetField(kPacketsSent, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> NicVlanStatsGet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::NicName, "Name of the NIC to get statistics from.")});
}

void NicVlanStatsGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    std::string const& name = input->GetParameter(kNicName);
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    auto switches = switchInfo.GetAllSwitches();
    HostCtl::Network::Portset* holder = nullptr;
    for (auto const& portset : switches) {
      for (auto const& uplink : portset->GetConnectedUplinks()) {
        if (uplink == name) {
          holder = portset.get();
          break;
        }
      }
      if (holder) break;
    }
    if (!holder) {
      output->AddErrorMessage(name + " is not a valid NIC connected to any virtual switch.");
      return;
    }
    auto stats = holder->GetUplinkVlanStats(name);
    if (stats.empty()) {
      output->AddErrorMessage("VLAN stats are disabled for " + name + " please enable them first.");
      return;
    }
    for (auto const& vlan : stats) {
      auto row = GetOutputStructure();
      row->SetField(kVlanId, static_cast<long>(vlan->vlanId));
      row->SetField(kPacketsReceived, static_cast<unsigned long>(vlan->packetsReceived));
      row->SetField(kPacketsSent, static_cast<unsigned long>(vlan->packetsSent));
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to get VLAN stats: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
