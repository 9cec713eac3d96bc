#include <cstdint>
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
const std::string kVlanId = "vlan-id";
const std::string kNotFound = "Unable to find a port group with the name ";
}  // namespace

NETWORK_COMMAND_NEW(VirtualSwitchPortGroupSet, Bool)

VirtualSwitchPortGroupSet::VirtualSwitchPortGroupSet() {
  SetDescription("Set the vlan id for the given port group");
}

std::shared_ptr<InputSpec> VirtualSwitchPortGroupSet::GetInputSpecInternal() {
  using HostCtl::Network::PortGroup;
  auto spec = InputSpec::New();
  spec->AddParameter(
      Required(Shared::PortgroupName, "The name of the port group to set vlan id for."));
  auto vlanId = Optional(kVlanId, Int, "v",
                         "The vlan id for this port group. This value is in the range (" +
                             std::to_string(PortGroup::MIN_VLAN_ID) + " - " +
                             std::to_string(PortGroup::MAX_VLAN_ID) + ")");
  auto range = ParameterConstraint::New(IntRange);
  range->SetIntRange(PortGroup::MIN_VLAN_ID, PortGroup::MAX_VLAN_ID);
  vlanId->SetConstraint(range);
  spec->AddParameter(vlanId);
  return spec;
}

void VirtualSwitchPortGroupSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kPortgroupName);
    long vlanId = input->GetParameterInt(kVlanId);
    auto group = HostCtl::Network::NetworkFactory::GetPortGroupByName(name);
    if (!group) {
      output->AddErrorMessage(kNotFound + name);
      return;
    }
    group->SetVlanId(static_cast<uint16_t>(vlanId & 0xffff));
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
