// Branch uplinks attached to a trunk uplink with a VLAN ID. The attachments
// are kept with the trunk; a NIC is either a trunk, a branch, or neither.
#include <algorithm>
#include <string>

#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/pnic.h"
#include "hostctl/port_group.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::Operation;

// The trunk that `branch` is attached to, or null.
Sim::PnicState const* TrunkOf(Sim::NicArea const& area, std::string const& branch) {
  for (auto const& nic : area.pnics) {
    for (auto const& attachment : nic.attachments) {
      if (attachment.branch == branch) return &nic;
    }
  }
  return nullptr;
}

}  // namespace

void PnicImpl::AddAttachment(std::string const& branch, uint16_t vlanId) {
  CheckFault(Operation::PnicImpl_AddAttachment);
  uint16_t const maxVlan = HostCtl::Network::PortGroup::MAX_VLAN_ID - 1;
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](Sim::HostModel& host) {
    auto* trunk = Sim::FindPnic(host.nic, name_);
    if (!trunk) throw HostCtlException("Physical NIC " + name_ + " not found");
    auto const* target = Sim::FindPnic(host.nic, branch);
    if (!target) throw HostCtlException("Physical NIC " + branch + " not found");
    if (branch == name_) throw HostCtlException("Uplink " + branch + " can't be its own branch");
    if (vlanId < HostCtl::Network::PortGroup::MIN_VLAN_ID || vlanId > maxVlan) {
      throw HostCtlException("VLAN ID " + std::to_string(vlanId) + " is out of range " +
                             std::to_string(HostCtl::Network::PortGroup::MIN_VLAN_ID) + " to " +
                             std::to_string(maxVlan));
    }
    if (auto const* other = TrunkOf(host.nic, branch)) {
      throw HostCtlException("Uplink " + branch + " is already attached to trunk " + other->name);
    }
    if (!target->attachments.empty()) {
      throw HostCtlException("Uplink " + branch + " is a trunk and can't be attached as a branch");
    }
    Sim::CheckBranch(host, branch);
    if (auto const* above = TrunkOf(host.nic, name_)) {
      throw HostCtlException("Uplink " + name_ + " is a branch of " + above->name +
                             " and can't be a trunk");
    }
    for (auto const& attachment : trunk->attachments) {
      if (attachment.vlan_id == vlanId) {
        throw HostCtlException("VLAN ID " + std::to_string(vlanId) + " is already used on trunk " +
                               name_ + " by " + attachment.branch);
      }
    }
    trunk->attachments.push_back({branch, vlanId});
  });
  MarkStale();
}

void PnicImpl::RemoveAttachment(std::string const& branch) {
  CheckFault(Operation::PnicImpl_RemoveAttachment);
  Change([&](Sim::PnicState& trunk) {
    auto found = std::find_if(trunk.attachments.begin(), trunk.attachments.end(),
                              [&](auto const& attachment) { return attachment.branch == branch; });
    if (found == trunk.attachments.end()) {
      throw HostCtlException("Uplink " + branch + " is not attached to trunk " + name_);
    }
    trunk.attachments.erase(found);
  });
}

std::vector<HostCtl::Network::PnicAttachment> PnicImpl::GetAttachments() {
  CheckFault(Operation::PnicImpl_GetAttachments);
  std::vector<HostCtl::Network::PnicAttachment> result;
  for (auto const& attachment : Cached().attachments) {
    result.push_back({attachment.branch, attachment.vlan_id});
  }
  return result;
}

}  // namespace OrvkCtl::Network
