#include "vswitch/VirtualSwitchPortGroupAdd.h"

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

std::shared_ptr<VirtualSwitchPortGroupAdd> VirtualSwitchPortGroupAdd::New() {
  return std::shared_ptr<VirtualSwitchPortGroupAdd>(new VirtualSwitchPortGroupAdd());
}

VirtualSwitchPortGroupAdd::VirtualSwitchPortGroupAdd() {
  SetDescription("Allows the addition of a standard port group to a virtual switch.");
}

VirtualSwitchPortGroupAdd::~VirtualSwitchPortGroupAdd() = default;

std::shared_ptr<InputSpec> VirtualSwitchPortGroupAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto portgroupName = ParameterSpec::New(kPortgroupName, Toolbase::CallSpec::String);
  portgroupName->SetRequired(true);
  portgroupName->SetShortName("p");
  portgroupName->SetDescription("The name of the port group to add");
  spec->AddParameter(portgroupName);
  auto vswitchName = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  vswitchName->SetRequired(true);
  vswitchName->SetShortName("v");
  vswitchName->SetDescription("The virtual switch to add the port group to.");
  spec->AddParameter(vswitchName);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchPortGroupAdd::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void VirtualSwitchPortGroupAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                std::shared_ptr<Output> const& output) {
  try {
    std::string const& portgroupName = input->GetParameter(kPortgroupName);
    std::string const& vswitchName = input->GetParameter(kVswitchName);
    auto vswitch = HostCtl::Network::NetworkFactory::GetVirtualSwitchById(vswitchName);
    vswitch->AddPortGroup(portgroupName);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
