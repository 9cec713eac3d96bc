#include "nic/NicVlanStatsSet.h"

#include <memory>
#include <string>
#include <vector>

#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kNicName = "nic-name";
const std::string kEnabled = "enabled";
}  // namespace

std::shared_ptr<NicVlanStatsSet> NicVlanStatsSet::New() {
  return std::shared_ptr<NicVlanStatsSet>(new NicVlanStatsSet());
}

NicVlanStatsSet::NicVlanStatsSet() {
  SetDescription("Enable/disable VLAN statistics collection on the NIC.");
}

NicVlanStatsSet::~NicVlanStatsSet() = default;

std::shared_ptr<InputSpec> NicVlanStatsSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto nicName = ParameterSpec::New(kNicName, ParameterType::String);
  nicName->SetRequired(true);
  nicName->SetShortName("n");
  nicName->SetDescription("Name of the NIC to get statistics from.");
  spec->AddParameter(nicName);
  auto enabled = ParameterSpec::New(kEnabled, ParameterType::Bool);
  enabled->SetRequired(true);
  enabled->SetShortName("e");
  enabled->SetDescription("Whether to enable or disable VLAN statistics");
  spec->AddParameter(enabled);
  return spec;
}

std::shared_ptr<OutputSpec> NicVlanStatsSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
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
