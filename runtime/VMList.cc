#include <string>
#include <unordered_map>
#include <vector>

#include "hostctl/lib.h"
#include "hostctl/port.h"
#include "hostctl/world.h"
#include "runtime/RuntimeCommands.h"
#include "runtime/VmPortWalk.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kWorldId = "World ID";
const std::string kName = "Name";
const std::string kNumPorts = "Num Ports";
const std::string kNetworks = "Networks";
// The scheduler's prefix of a VM world's name.
constexpr size_t kWorldNamePrefix = 5;
}  // namespace

NETWORK_COMMAND_NEW(VMList, Rows)

VMList::VMList() {
  SetDescription("List networking information for the VM's that have active ports.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:VM", "World ID,Name,Num Ports,Networks");
}

std::shared_ptr<MetaStruct> VMList::GetOutputStructure() {
  auto result = MetaStruct::New("VM");
  result->SetField(kWorldId, MetaInt::New());
  result->SetField(kName, MetaString::New());
  result->SetField(kNumPorts, MetaInt::New());
  result->SetField(kNetworks, MetaList::New(MetaType::String));
  return result;
}

std::shared_ptr<InputSpec> VMList::GetInputSpecInternal() { return InputSpec::New(); }

void VMList::ExecuteInternal(std::shared_ptr<Input> const&, std::shared_ptr<Output> const& output) {
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    std::unordered_map<int, std::vector<std::string>> networks;
    WalkVmPorts(true, [&](HostCtl::Network::Portset& portset, VmSwitchKind kind,
                          OrvkCtl::Network::PortImpl& port, uint32_t world) {
      if (kind == VmSwitchKind::Unknown) return;
      std::string network = kind == VmSwitchKind::LegacyOrOpaque ? port.GetPortGroupName()
                                                                 : DVPortgroupOf(portset, port);
      networks[static_cast<int>(world)].push_back(network);
    });
    for (auto const& [world, names] : networks) {
      OrvkCtl::Resource::WorldImpl worldImpl(static_cast<unsigned long>(world));
      auto row = GetOutputStructure();
      row->SetField(kWorldId, world);
      row->SetField(kName, worldImpl.GetWorldName().substr(kWorldNamePrefix));
      row->SetField(kNumPorts, static_cast<long>(names.size()));
      row->SetField(kNetworks, names);
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to list VM's: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
