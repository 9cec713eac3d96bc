#include <string>

#include "hostctl/network_info.h"
#include "hostctl/port_group.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kName = "Name";
const std::string kVirtualSwitch = "Virtual Switch";
const std::string kActiveClients = "Active Clients";
const std::string kVlanId = "VLAN ID";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupList, Rows)

VirtualSwitchPortGroupList::VirtualSwitchPortGroupList() {
  SetDescription("List all of the port groups currently on the system.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:PortGroup", "Name,Virtual Switch,Active Clients,VLAN ID");
}

std::shared_ptr<MetaStruct> VirtualSwitchPortGroupList::GetOutputStructure() {
  auto result = MetaStruct::New("PortGroup");
  result->SetField(kName, MetaString::New());
  result->SetField(kVirtualSwitch, MetaString::New());
  result->SetField(kActiveClients, MetaInt::New());
  result->SetField(kVlanId, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupList::GetInputSpecInternal() {
  return InputSpec::New();
}

void VirtualSwitchPortGroupList::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                                                 std::shared_ptr<Output> const& output) {
  try {
    auto result = MetaList::New(Toolbase::MetaObj::Struct, GetOutputStructure());
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    for (auto const& group : networkInfo.GetAllPortGroups()) {
      auto record = GetOutputStructure();
      record->SetField(kName, group->GetName());
      record->SetField(kVirtualSwitch, group->GetVirtualSwitchName());
      record->SetField(kActiveClients, group->GetNumActiveClients());
      record->SetField(kVlanId, static_cast<int>(group->GetVlanId()));
      result->Add(record);
    }
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
