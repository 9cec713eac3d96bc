#include "vswitch/VirtualSwitchPortGroupRemove.h"

#include <string>

#include "hostctl/network_info.h"
#include "hostctl/port_group.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kPortgroupName = "portgroup-name";
const std::string kVswitchName = "vswitch-name";
}  // namespace

std::shared_ptr<VirtualSwitchPortGroupRemove> VirtualSwitchPortGroupRemove::New() {
  return std::shared_ptr<VirtualSwitchPortGroupRemove>(new VirtualSwitchPortGroupRemove());
}

VirtualSwitchPortGroupRemove::VirtualSwitchPortGroupRemove() {
  SetDescription("Remove a port group from the given virtual switch");
}

VirtualSwitchPortGroupRemove::~VirtualSwitchPortGroupRemove() = default;

std::shared_ptr<InputSpec> VirtualSwitchPortGroupRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto portgroupName = ParameterSpec::New(kPortgroupName, Toolbase::CallSpec::String);
  portgroupName->SetRequired(true);
  portgroupName->SetShortName("p");
  portgroupName->SetDescription(" ");
  spec->AddParameter(portgroupName);
  auto vswitchName = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  vswitchName->SetRequired(true);
  vswitchName->SetShortName("v");
  vswitchName->SetDescription(" ");
  spec->AddParameter(vswitchName);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchPortGroupRemove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void VirtualSwitchPortGroupRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                   std::shared_ptr<Output> const& output) {
  try {
    std::string const& portgroupName = input->GetParameter(kPortgroupName);
    std::string const& vswitchName = input->GetParameter(kVswitchName);
    auto vswitch = HostCtl::Network::NetworkFactory::GetVirtualSwitchById(vswitchName);
    vswitch->RemovePortGroup(portgroupName);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
