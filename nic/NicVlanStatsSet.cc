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
const std::string kEnabled = "enabled";
}  // namespace

NETWORK_COMMAND_NEW(NicVlanStatsSet, Bool)

NicVlanStatsSet::NicVlanStatsSet() {
  SetDescription("Enable/disable VLAN statistics collection on the NIC.");
}

std::shared_ptr<InputSpec> NicVlanStatsSet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::NicName, "Name of the NIC to get statistics from."),
                      Required(kEnabled, ParameterType::Bool, "e",
                               "Whether to enable or disable VLAN statistics")});
}

void NicVlanStatsSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kNicName);
    bool const enabled = input->GetParameterBool(kEnabled);
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    auto switches = switchInfo.GetAllSwitches();
    for (auto const& portset : switches) {
      for (auto const& uplink : portset->GetConnectedUplinks()) {
        if (uplink == name) {
          portset->SetUplinkVlanStats(name, enabled);
          output->SetRootObject(MetaBool::New(true));
          return;
        }
      }
    }
    output->AddErrorMessage(name + " is not a valid NIC connected to any virtual switch.");
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to set VLAN stats: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
