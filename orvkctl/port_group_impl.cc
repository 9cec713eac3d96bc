// Port groups of the standard switches of the simulated host.
#include "hostctl/port_group_impl.h"

#include "fault.h"
#include "host_backend.h"
#include "hostctl/network_info.h"
#include "hostctl/virtual_switch.h"
#include "vswitch_policy.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::NicTeamingPolicy;
using HostCtl::Network::PortGroup;
using HostCtl::Network::PortSecurityPolicy;
using HostCtl::Network::ShapingPolicy;
using Sim::CheckFault;
using Sim::Operation;
using Sim::HostModel;
using Sim::PortGroupState;
using Sim::StandardSwitchState;

std::string NotFound(std::string const& name) { return "Port group " + name + " not found"; }

struct GroupRef {
  StandardSwitchState const* vswitch;
  PortGroupState const* group;
};

GroupRef ReadGroup(HostModel const& host, std::string const& name) {
  StandardSwitchState const* owner = nullptr;
  auto const* group = Sim::FindPortGroup(host.vswitch, name, &owner);
  if (!group) throw HostCtlException(NotFound(name));
  return {owner, group};
}

GroupRef ReadGroup(std::string const& name) {
  return ReadGroup(Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch), name);
}

// Applies `change` to the group and its switch, inside one host change.
void ChangeGroup(std::string const& name,
                 std::function<void(StandardSwitchState&, PortGroupState&)> const& change) {
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](HostModel& host) {
    StandardSwitchState* owner = nullptr;
    auto* group = Sim::FindPortGroup(host.vswitch, name, &owner);
    if (!group) throw HostCtlException(NotFound(name));
    change(*owner, *group);
  });
}

}  // namespace

PortGroupImpl::PortGroupImpl(std::string const& name) : name_(name) {
  CheckFault(Operation::PortGroupImpl_PortGroupImpl);
  ReadGroup(name);
}

PortGroupImpl::~PortGroupImpl() = default;

void PortGroupImpl::Refresh() {
  CheckFault(Operation::PortGroupImpl_Refresh);
  ReadGroup(name_);
}

std::string PortGroupImpl::GetName() {
  CheckFault(Operation::PortGroupImpl_GetName);
  return name_;
}

std::string PortGroupImpl::GetVirtualSwitchName() {
  CheckFault(Operation::PortGroupImpl_GetVirtualSwitchName);
  return ReadGroup(name_).vswitch->name;
}

uint16_t PortGroupImpl::GetVlanId() {
  CheckFault(Operation::PortGroupImpl_GetVlanId);
  return ReadGroup(name_).group->vlan_id;
}

void PortGroupImpl::SetVlanId(uint16_t vlanId) {
  CheckFault(Operation::PortGroupImpl_SetVlanId);
  if (vlanId < MIN_VLAN_ID || vlanId > MAX_VLAN_ID) {
    throw HostCtlException("Invalid VLAN id " + std::to_string(vlanId) + " for port group " +
                           name_ + ": it must be between " + std::to_string(MIN_VLAN_ID) + " and " +
                           std::to_string(MAX_VLAN_ID));
  }
  ChangeGroup(name_, [&](StandardSwitchState&, PortGroupState& group) { group.vlan_id = vlanId; });
}

PortSecurityPolicy PortGroupImpl::GetEffectiveSecurityPolicy() {
  CheckFault(Operation::PortGroupImpl_GetEffectiveSecurityPolicy);
  auto ref = ReadGroup(name_);
  return Sim::EffectiveSecurity(*ref.vswitch, *ref.group);
}

PortSecurityPolicy PortGroupImpl::GetConfiguredSecurityPolicy() {
  CheckFault(Operation::PortGroupImpl_GetConfiguredSecurityPolicy);
  return Sim::ToPolicy(ReadGroup(name_).group->security);
}

void PortGroupImpl::ApplySecurityPolicy(PortSecurityPolicy const& policy) {
  CheckFault(Operation::PortGroupImpl_ApplySecurityPolicy);
  ChangeGroup(name_, [&](StandardSwitchState&, PortGroupState& group) {
    group.security = Sim::ToState(policy);
  });
}

NicTeamingPolicy PortGroupImpl::GetEffectiveTeamingPolicy() {
  CheckFault(Operation::PortGroupImpl_GetEffectiveTeamingPolicy);
  HostModel const& host = Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch);
  auto ref = ReadGroup(host, name_);
  return Sim::EffectiveTeaming(host, *ref.vswitch, *ref.group);
}

NicTeamingPolicy PortGroupImpl::GetConfiguredTeamingPolicy() {
  CheckFault(Operation::PortGroupImpl_GetConfiguredTeamingPolicy);
  return Sim::ToPolicy(ReadGroup(name_).group->teaming);
}

void PortGroupImpl::ApplyTeamingPolicy(NicTeamingPolicy policy) {
  CheckFault(Operation::PortGroupImpl_ApplyTeamingPolicy);
  ChangeGroup(name_, [&](StandardSwitchState& vswitch, PortGroupState& group) {
    Sim::CheckTeaming(vswitch, "port group " + name_, policy);
    group.teaming = Sim::ToState(policy);
  });
}

ShapingPolicy PortGroupImpl::GetEffectiveShapingPolicy() {
  CheckFault(Operation::PortGroupImpl_GetEffectiveShapingPolicy);
  auto ref = ReadGroup(name_);
  return Sim::EffectiveShaping(*ref.vswitch, *ref.group);
}

ShapingPolicy PortGroupImpl::GetConfiguredShapingPolicy() {
  CheckFault(Operation::PortGroupImpl_GetConfiguredShapingPolicy);
  return Sim::ToPolicy(ReadGroup(name_).group->shaping);
}

void PortGroupImpl::ApplyShapingPolicy(ShapingPolicy policy) {
  CheckFault(Operation::PortGroupImpl_ApplyShapingPolicy);
  ChangeGroup(name_, [&](StandardSwitchState& vswitch, PortGroupState& group) {
    group.shaping = Sim::ToState(policy);
    Sim::CheckShaping(vswitch);
  });
}

std::unique_ptr<HostCtl::Network::VirtualSwitch> PortGroupImpl::GetVirtualSwitch() {
  CheckFault(Operation::PortGroupImpl_GetVirtualSwitch);
  return std::make_unique<VirtualSwitchImpl>(ReadGroup(name_).vswitch->name);
}

int PortGroupImpl::GetNumActiveClients() {
  CheckFault(Operation::PortGroupImpl_GetNumActiveClients);
  return ReadGroup(name_).group->active_clients;
}

HostCtl::Network::ConnectionPoint::ConnectionType PortGroupImpl::GetConnectionType() const {
  return PortGroupConnection;
}

std::string PortGroupImpl::GetPortGroupName() const { return name_; }

HostCtl::Network::DVPortParam PortGroupImpl::GetDVPortParam() const { return {}; }

std::string PortGroupImpl::GetPortsetName() {
  CheckFault(Operation::PortGroupImpl_GetPortsetName);
  return ReadGroup(name_).vswitch->name;
}

bool PortGroupImpl::IsValid() {
  CheckFault(Operation::PortGroupImpl_IsValid);
  return Sim::FindPortGroup(Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch).vswitch, name_) !=
         nullptr;
}

}  // namespace OrvkCtl::Network

namespace OrvkCtl::Network {

std::vector<std::unique_ptr<HostCtl::Network::PortGroup>> NetworkInfoImpl::GetAllPortGroups() {
  CheckFault(Operation::NetworkInfoImpl_GetAllPortGroups);
  std::vector<std::unique_ptr<HostCtl::Network::PortGroup>> groups;
  for (auto const& vswitch :
       Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch).vswitch.standard_switches) {
    for (size_t i = 0; i < vswitch.port_groups.size(); ++i) {
      groups.push_back(std::make_unique<PortGroupImpl>(std::string(vswitch.port_groups.NameAt(i))));
    }
  }
  return groups;
}

}  // namespace OrvkCtl::Network
