#include "vswitch/VirtualSwitchStandardUplinkRemove.h"

#include <string>

#include "hostctl/network_info.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kVswitchName = "vswitch-name";
const std::string kUplinkName = "uplink-name";
}  // namespace

std::shared_ptr<VirtualSwitchStandardUplinkRemove> VirtualSwitchStandardUplinkRemove::New() {
  return std::shared_ptr<VirtualSwitchStandardUplinkRemove>(
      new VirtualSwitchStandardUplinkRemove());
}

VirtualSwitchStandardUplinkRemove::VirtualSwitchStandardUplinkRemove() {
  SetDescription(
      "Remove an uplink from the given virtual switch. Note if this virtual switch has a NIC "
      "teaming policy assigned to it then the policy must also be modified to disable use of this "
      "uplink on this virtual switch");
}

VirtualSwitchStandardUplinkRemove::~VirtualSwitchStandardUplinkRemove() = default;

std::shared_ptr<InputSpec> VirtualSwitchStandardUplinkRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto vswitchName = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  vswitchName->SetRequired(true);
  vswitchName->SetShortName("v");
  vswitchName->SetDescription("The name of the virtual switch to remove an uplink from.");
  spec->AddParameter(vswitchName);
  auto uplinkName = ParameterSpec::New(kUplinkName, Toolbase::CallSpec::String);
  uplinkName->SetRequired(true);
  uplinkName->SetShortName("u");
  uplinkName->SetDescription("The name of the uplink to remove from the virtual switch.");
  spec->AddParameter(uplinkName);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchStandardUplinkRemove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void VirtualSwitchStandardUplinkRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                        std::shared_ptr<Output> const& output) {
  try {
    std::string const& vswitchName = input->GetParameter(kVswitchName);
    std::string const& uplink = input->GetParameter(kUplinkName);
    auto vswitch = HostCtl::Network::NetworkFactory::GetVirtualSwitchById(vswitchName);
    // A switch the factory does not hand out is left alone, silently.
    if (vswitch) vswitch->RemoveUplink(uplink, false);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
