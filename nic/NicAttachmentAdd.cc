#include <cstdint>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "hostctl/port_group.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kTrunk = "trunk";
const std::string kBranch = "branch";
const std::string kVlanId = "vlan-id";
}  // namespace

NETWORK_COMMAND_NEW(NicAttachmentAdd, Bool)

NicAttachmentAdd::NicAttachmentAdd() {
  SetDescription("Attach one uplink as a branch to a trunk uplink with specified VLAN ID.");
}

std::shared_ptr<InputSpec> NicAttachmentAdd::GetInputSpecInternal() {
  using HostCtl::Network::PortGroup;
  auto spec = InputSpec::New();
  spec->AddParameter(Required(kTrunk, ParameterType::String, "t",
                              "The name of the NIC to be configured as trunk uplink."));
  spec->AddParameter(Required(kBranch, ParameterType::String, "b",
                              "The name of the NIC to be attached as branch uplink."));
  auto vlanId = Required(kVlanId, ParameterType::Int, "v",
                         "The vlan ID for the branch uplink. Valid values: %ENUM%");
  // One below a port group's upper bound, deliberately.
  auto range = ParameterConstraint::New(IntRange);
  range->SetIntRange(PortGroup::MIN_VLAN_ID, PortGroup::MAX_VLAN_ID - 1);
  vlanId->SetConstraint(range);
  spec->AddParameter(vlanId);
  return spec;
}

void NicAttachmentAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                       std::shared_ptr<Output> const& output) {
  std::string const& trunkName = input->GetParameter(kTrunk);
  std::string const& branchName = input->GetParameter(kBranch);
  try {
    long vlanId = input->GetParameterInt(kVlanId);
    if (trunkName == branchName) {
      output->AddErrorMessage("Trunk uplink and branch uplink need to be different.");
      return;
    }
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto trunk = networkInfo.GetPnicByName(trunkName);
    if (!trunk) {
      output->AddErrorMessage("Invalid trunk PNIC name " + trunkName);
      return;
    }
    auto branch = networkInfo.GetPnicByName(branchName);
    if (!branch) {
      output->AddErrorMessage("Invalid branch PNIC name " + branchName);
      return;
    }
    trunk->AddAttachment(branchName, static_cast<uint16_t>(vlanId & 0xffff));
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Failed to attach uplink " + branchName + " to " + trunkName + ": " +
                            e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
