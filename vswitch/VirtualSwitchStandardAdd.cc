#include <string>

#include "hostctl/policy.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kPorts = "ports";
constexpr size_t kMaxNameLength = 127;
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchStandardAdd, Bool)

VirtualSwitchStandardAdd::VirtualSwitchStandardAdd() {
  SetDescription("Add a new virtual switch to the Haldeni networking system.");
}

std::shared_ptr<InputSpec> VirtualSwitchStandardAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(Shared::VswitchName, "The name of the virtual switch to create."));
  auto ports = Optional(
      kPorts, Int, "P",
      "The number of ports to to give this newly created virtual switch. Maximum ports per "
      "virtual switch is 4096. If no value is given the default value(128) is used. The number "
      "of ports is limited by the number of already allocated ports on the host. The system wide "
      "port count cannot be greater than 4608.");
  auto range = ParameterConstraint::New(IntRange);
  range->SetIntRange(1, 4096);
  ports->SetConstraint(range);
  spec->AddParameter(ports);
  return spec;
}

void VirtualSwitchStandardAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                               std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
    std::string const& name = input->GetParameter(kVswitchName);
    if (name.size() > kMaxNameLength) {
      output->AddErrorMessage("The virtual switch name exceeds the maximum allowed length. ");
      return;
    }
    unsigned int ports = HostCtl::Network::Portset::DEF_NUM_PORTS;
    if (input->HasParameter(kPorts))
      ports = static_cast<unsigned int>(input->GetParameterInt(kPorts));
    auto capabilities = HostCtl::Network::NicCapabilities::GetDefaultPolicy();
    auto shaping = HostCtl::Network::ShapingPolicy::GetDefaultPolicy();
    auto security = HostCtl::Network::PortSecurityPolicy::GetDefaultPolicy();
    auto teaming = HostCtl::Network::NicTeamingPolicy::GetDefaultPolicy();
    switchInfo.AddVirtualSwitchWithPolicy(teaming, security, shaping, capabilities, name, ports);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
