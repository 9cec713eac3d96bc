#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "hostctl/dvswitch.h"
#include "hostctl/lib.h"
#include "hostctl/pnic.h"
#include "hostctl/port.h"
#include "runtime/RuntimeCommands.h"
#include "runtime/VmPortWalk.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kWorldIdParam = "world-id";
const std::string kPortId = "Port ID";
const std::string kVSwitch = "vSwitch";
const std::string kPortgroup = "Portgroup";
const std::string kDVPortId = "DVPort ID";
const std::string kMacAddress = "MAC Address";
const std::string kIpAddress = "IP Address";
const std::string kTeamUplink = "Team Uplink";
const std::string kUplinkPortId = "Uplink Port ID";
const std::string kActiveFilters = "Active Filters";
}  // namespace

NETWORK_COMMAND_NEW(VMPortList, Rows)

VMPortList::VMPortList() {
  SetDescription("List of active ports for a given VM.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:Port",
                            "Port ID,vSwitch,Portgroup,DVPort ID,MAC Address,IP Address,Team "
                            "Uplink,Uplink Port ID,Active Filters");
}

std::shared_ptr<MetaStruct> VMPortList::GetOutputStructure() {
  auto result = MetaStruct::New("Port");
  result->SetField(kPortId, MetaInt::New());
  for (auto const* field :
       {&kVSwitch, &kPortgroup, &kDVPortId, &kMacAddress, &kIpAddress, &kTeamUplink}) {
    result->SetField(*field, MetaString::New());
  }
  result->SetField(kUplinkPortId, MetaInt::New());
  result->SetField(kActiveFilters, MetaList::New(MetaType::String));
  return result;
}

std::shared_ptr<InputSpec> VMPortList::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kWorldIdParam, ParameterType::Int, "w", "World ID of the VM for listing ports.")});
}

void VMPortList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                 std::shared_ptr<Output> const& output) {
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    auto wanted =
        static_cast<uint32_t>(std::strtol(input->GetParameter(kWorldIdParam).c_str(), nullptr, 10));
    WalkVmPorts(false, [&](HostCtl::Network::Portset& portset, VmSwitchKind kind,
                           OrvkCtl::Network::PortImpl& port, uint32_t world) {
      if (world != wanted) return;
      auto row = GetOutputStructure();
      row->SetField(kPortId, port.GetId());
      if (kind == VmSwitchKind::LegacyOrOpaque) {
        row->SetField(kVSwitch, portset.GetName());
        row->SetField(kPortgroup, port.GetPortGroupName());
        row->SetField(kDVPortId, "");
      } else {
        auto* dvs = dynamic_cast<HostCtl::Network::DVSwitch*>(&portset);
        row->SetField(kVSwitch, dvs ? dvs->GetDvsName() : std::string());
        row->SetField(kPortgroup, DVPortgroupOf(portset, port));
        row->SetField(kDVPortId, port.GetDVPortID());
      }
      auto macs = port.GetMacAddresses();
      row->SetField(kMacAddress, macs.empty() ? std::string() : macs.front().GetStringAddress());
      row->SetField(kIpAddress, port.GetPortClientIpv4Address().GetStringAddress());
      OrvkCtl::Network::PnicImpl uplink(port.GetSchedTeamUplink());
      row->SetField(kTeamUplink, uplink.GetName());
      long uplinkPortId = 0;
      try {
        uplinkPortId = uplink.GetPort()->GetId();
      } catch (HostCtl::Lib::HostCtlException const&) {
        // An uplink without a port of its own (a LAG member) shows 0.
        uplinkPortId = 0;
      }
      row->SetField(kUplinkPortId, uplinkPortId);
      std::vector<std::string> filters;
      for (auto const& filter : port.GetFilterStats()) {
        if (filter->active &&
            std::find(filters.begin(), filters.end(), filter->name) == filters.end()) {
          filters.push_back(filter->name);
        }
      }
      row->SetField(kActiveFilters, filters);
      list->Add(row);
    });
    if (list->GetCount() == 0) {
      output->AddErrorMessage("Couldn't find VM with given world ID");
      return;
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to list ports for VM: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
