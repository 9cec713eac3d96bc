#include "vswitch/VirtualSwitchStandardUplinkAdd.h"

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

std::shared_ptr<VirtualSwitchStandardUplinkAdd> VirtualSwitchStandardUplinkAdd::New() {
  return std::shared_ptr<VirtualSwitchStandardUplinkAdd>(new VirtualSwitchStandardUplinkAdd());
}

VirtualSwitchStandardUplinkAdd::VirtualSwitchStandardUplinkAdd() {
  SetDescription(
      "Add an uplink to the given virtual switch. Note if this virtual switch has a NIC teaming "
      "policy assigned to it then the policy must also be modified to enable use of this uplink on "
      "this virtual switch");
}

VirtualSwitchStandardUplinkAdd::~VirtualSwitchStandardUplinkAdd() = default;

std::shared_ptr<InputSpec> VirtualSwitchStandardUplinkAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto vswitchName = ParameterSpec::New(kVswitchName, Toolbase::CallSpec::String);
  vswitchName->SetRequired(true);
  vswitchName->SetShortName("v");
  vswitchName->SetDescription("The name of the virtual switch to add an uplink to.");
  spec->AddParameter(vswitchName);
  auto uplinkName = ParameterSpec::New(kUplinkName, Toolbase::CallSpec::String);
  uplinkName->SetRequired(true);
  uplinkName->SetShortName("u");
  uplinkName->SetDescription("The name of the uplink to add to the virtual switch.");
  spec->AddParameter(uplinkName);
  return spec;
}

std::shared_ptr<OutputSpec> VirtualSwitchStandardUplinkAdd::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void VirtualSwitchStandardUplinkAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                     std::shared_ptr<Output> const& output) {
  try {
    std::string const& vswitchName = input->GetParameter(kVswitchName);
    std::string const& uplink = input->GetParameter(kUplinkName);
    auto vswitch = HostCtl::Network::NetworkFactory::GetVirtualSwitchById(vswitchName);
    // A switch the factory does not hand out is left alone, silently.
    if (vswitch) vswitch->AddUplink(uplink);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
