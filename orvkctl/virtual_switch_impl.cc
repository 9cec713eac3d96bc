// Standard switches of the simulated host.
#include <algorithm>

#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/dvswitch.h"
#include "hostctl/orvk_nic.h"
#include "hostctl/port_group_impl.h"
#include "hostctl/virtual_switch.h"
#include "vswitch_policy.h"

namespace HostCtl::Network {
VirtualSwitch::~VirtualSwitch() = default;
}  // namespace HostCtl::Network

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::NicTeamingPolicy;
using HostCtl::Network::PortSecurityPolicy;
using HostCtl::Network::ShapingPolicy;
using Sim::CheckFault;
using Sim::Operation;
using Sim::HostModel;
using Sim::StandardSwitchState;

// Ports a switch keeps for its own use beyond the configured ones.
constexpr int kReservedPorts = 8;
constexpr int kMaxPortsPerSwitch = 4096;
constexpr int kMaxPortsPerHost = 4608;
constexpr size_t kMaxNameLength = 127;

char const* const kCdpWords[] = {"down", "listen", "advertise", "both"};

StandardSwitchState const& ReadSwitch(HostModel const& host, std::string const& name) {
  auto const* vswitch = Sim::FindStandardSwitch(host.vswitch, name);
  if (!vswitch) throw HostCtlException("Virtual switch " + name + " not found");
  return *vswitch;
}

StandardSwitchState const& ReadSwitch(std::string const& name) {
  return ReadSwitch(Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch), name);
}

StandardSwitchState& WriteSwitch(HostModel& host, std::string const& name) {
  auto* vswitch = Sim::FindStandardSwitch(host.vswitch, name);
  if (!vswitch) throw HostCtlException("Virtual switch " + name + " not found");
  return *vswitch;
}

int NumPorts(StandardSwitchState const& vswitch) {
  return vswitch.configured_ports + kReservedPorts;
}

// Drops `uplink` from a stored order, keeping the active count in step. When
// the last active uplink goes, the first standby takes over, as the failover
// order would make it do on a link failure.
void DropFromOrder(Sim::TeamingPolicyState& teaming, std::string const& uplink) {
  auto& order = teaming.uplink_order;
  auto it = std::find(order.begin(), order.end(), uplink);
  if (it == order.end()) return;
  if (it - order.begin() < teaming.max_active_uplinks) --teaming.max_active_uplinks;
  order.erase(it);
  if (teaming.max_active_uplinks == 0 && !order.empty()) teaming.max_active_uplinks = 1;
}

// The switch, when it detects failures by beaconing, and the groups that
// chose beaconing for themselves.
std::vector<std::string> BeaconUsers(HostModel const& host, StandardSwitchState const& vswitch) {
  std::vector<std::string> users;
  if (Sim::UsesBeacon(Sim::EffectiveTeaming(host, vswitch))) users.push_back(vswitch.name);
  for (auto const& group : vswitch.port_groups) {
    bool own = (group.teaming.set_mask & NicTeamingPolicy::LINK_CRITERIA_BIT) != 0;
    if (own && Sim::UsesBeacon(Sim::ToPolicy(group.teaming))) users.push_back(group.name);
  }
  return users;
}

void CheckName(std::string const& kind, std::string const& name) {
  if (name.empty()) throw HostCtlException(kind + " name cannot be empty");
  if (name.size() > kMaxNameLength) {
    throw HostCtlException(kind + " name " + name + " is longer than " +
                           std::to_string(kMaxNameLength) + " characters");
  }
  for (unsigned char c : name) {
    if (c < 0x20 || c == 0x7f) {
      throw HostCtlException(kind + " name " + name + " contains a control character");
    }
  }
}

}  // namespace

PortsetImpl::PortsetImpl(std::string const& name) : name_(name) {}
PortsetImpl::~PortsetImpl() = default;

bool PortsetImpl::IsValidVirtualSwitch(std::string const& name) {
  CheckFault(Operation::PortsetImpl_IsValidVirtualSwitch);
  return Sim::FindStandardSwitch(Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch).vswitch, name) !=
         nullptr;
}

void PortsetImpl::Refresh() {
  CheckFault(Operation::PortsetImpl_Refresh);
  ReadSwitch(name_);
}

std::string PortsetImpl::GetName() {
  CheckFault(Operation::PortsetImpl_GetName);
  EnsureFresh();
  return name_;
}

std::string PortsetImpl::GetDvsIdentifier() {
  CheckFault(Operation::PortsetImpl_GetDvsIdentifier);
  ReadSwitch(name_);
  return std::string();
}

std::vector<std::string> PortsetImpl::GetUplinks() {
  CheckFault(Operation::PortsetImpl_GetUplinks);
  return ReadSwitch(name_).uplinks;
}

int PortsetImpl::GetNumPorts() {
  CheckFault(Operation::PortsetImpl_GetNumPorts);
  return NumPorts(ReadSwitch(name_));
}

std::vector<std::string> PortsetImpl::GetConnectedUplinks() {
  CheckFault(Operation::PortsetImpl_GetConnectedUplinks);
  HostModel const& host = Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch);
  return Sim::ConnectedUplinks(host, ReadSwitch(host, name_));
}

int PortsetImpl::GetNumUsedPorts() {
  CheckFault(Operation::PortsetImpl_GetNumUsedPorts);
  auto const& vswitch = ReadSwitch(name_);
  // One port for the switch itself, one per uplink, one per client.
  int used = 1 + static_cast<int>(vswitch.uplinks.size());
  for (auto const& group : vswitch.port_groups) used += group.active_clients;
  return used;
}

std::string PortsetImpl::GetClass() {
  CheckFault(Operation::PortsetImpl_GetClass);
  ReadSwitch(name_);
  return "orvkswitch";
}

VirtualSwitchImpl::VirtualSwitchImpl(std::string const& name) : PortsetImpl(name) {}
VirtualSwitchImpl::~VirtualSwitchImpl() = default;

std::unique_ptr<HostCtl::Network::PortGroup> VirtualSwitchImpl::AddPortGroup(
    std::string const& name) {
  CheckFault(Operation::VirtualSwitchImpl_AddPortGroup);
  CheckName("Port group", name);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](HostModel& host) {
    auto& vswitch = WriteSwitch(host, name_);
    StandardSwitchState* owner = nullptr;
    if (Sim::FindPortGroup(host.vswitch, name, &owner)) {
      throw HostCtlException("A port group named " + name + " already exists on virtual switch " +
                             owner->name);
    }
    Sim::PortGroupState group;
    group.name = name;
    vswitch.port_groups.push_back(group);
  });
  return std::make_unique<PortGroupImpl>(name);
}

void VirtualSwitchImpl::RemovePortGroup(std::string const& name) {
  CheckFault(Operation::VirtualSwitchImpl_RemovePortGroup);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](HostModel& host) {
    auto& vswitch = WriteSwitch(host, name_);
    auto& groups = vswitch.port_groups;
    size_t at = 0;
    while (at < groups.size() && !groups.NameIs(at, name)) ++at;
    if (at == groups.size()) {
      throw HostCtlException("Port group " + name + " not found on virtual switch " + name_);
    }
    if (groups[at].active_clients > 0) {
      throw HostCtlException("Unable to remove port group " + name + ": it has " +
                             std::to_string(groups[at].active_clients) + " active clients");
    }
    groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(at));
  });
}

PortSecurityPolicy VirtualSwitchImpl::GetEffectiveSecurityPolicy() {
  CheckFault(Operation::VirtualSwitchImpl_GetEffectiveSecurityPolicy);
  return Sim::EffectiveSecurity(ReadSwitch(name_));
}

PortSecurityPolicy VirtualSwitchImpl::GetConfiguredSecurityPolicy() {
  CheckFault(Operation::VirtualSwitchImpl_GetConfiguredSecurityPolicy);
  return Sim::ToPolicy(ReadSwitch(name_).security);
}

void VirtualSwitchImpl::ApplySecurityPolicy(PortSecurityPolicy const& policy) {
  CheckFault(Operation::VirtualSwitchImpl_ApplySecurityPolicy);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](HostModel& host) {
    WriteSwitch(host, name_).security = Sim::ToState(policy);
  });
}

ShapingPolicy VirtualSwitchImpl::GetEffectiveShapingPolicy() {
  CheckFault(Operation::VirtualSwitchImpl_GetEffectiveShapingPolicy);
  return Sim::EffectiveShaping(ReadSwitch(name_));
}

ShapingPolicy VirtualSwitchImpl::GetConfiguredShapingPolicy() {
  CheckFault(Operation::VirtualSwitchImpl_GetConfiguredShapingPolicy);
  return Sim::ToPolicy(ReadSwitch(name_).shaping);
}

void VirtualSwitchImpl::ApplyShapingPolicy(ShapingPolicy policy) {
  CheckFault(Operation::VirtualSwitchImpl_ApplyShapingPolicy);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](HostModel& host) {
    auto& vswitch = WriteSwitch(host, name_);
    vswitch.shaping = Sim::ToState(policy);
    Sim::CheckShaping(vswitch);
  });
}

NicTeamingPolicy VirtualSwitchImpl::GetEffectiveTeamingPolicy() {
  CheckFault(Operation::VirtualSwitchImpl_GetEffectiveTeamingPolicy);
  HostModel const& host = Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch);
  return Sim::EffectiveTeaming(host, ReadSwitch(host, name_));
}

NicTeamingPolicy VirtualSwitchImpl::GetConfiguredTeamingPolicy() {
  CheckFault(Operation::VirtualSwitchImpl_GetConfiguredTeamingPolicy);
  return Sim::ToPolicy(ReadSwitch(name_).teaming);
}

void VirtualSwitchImpl::ApplyTeamingPolicy(NicTeamingPolicy policy) {
  CheckFault(Operation::VirtualSwitchImpl_ApplyTeamingPolicy);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](HostModel& host) {
    auto& vswitch = WriteSwitch(host, name_);
    Sim::CheckTeaming(vswitch, "virtual switch " + name_, policy);
    vswitch.teaming = Sim::ToState(policy);
  });
}

void VirtualSwitchImpl::AddUplink(std::string const& name) {
  CheckFault(Operation::VirtualSwitchImpl_AddUplink);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](HostModel& host) {
    if (!Sim::IsPhysicalNic(host, name)) {
      throw HostCtlException("Unable to add uplink " + name + ": no physical NIC of that name");
    }
    for (auto const& other : host.vswitch.standard_switches) {
      if (std::find(other.uplinks.begin(), other.uplinks.end(), name) != other.uplinks.end()) {
        throw HostCtlException("Unable to add uplink " + name + ": it is already an uplink of " +
                               other.name);
      }
    }
    // A NIC serves one switch at a time, standard or distributed.
    for (auto const& other : host.vswitch.distributed_switches) {
      if (std::find(other.uplinks.begin(), other.uplinks.end(), name) != other.uplinks.end()) {
        throw HostCtlException("Unable to add uplink " + name + ": it is already an uplink of " +
                               other.name);
      }
    }
    WriteSwitch(host, name_).uplinks.push_back(name);
  });
}

void VirtualSwitchImpl::RemoveUplink(std::string const& name, bool force) {
  CheckFault(Operation::VirtualSwitchImpl_RemoveUplink);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](HostModel& host) {
    auto& vswitch = WriteSwitch(host, name_);
    auto it = std::find(vswitch.uplinks.begin(), vswitch.uplinks.end(), name);
    if (it == vswitch.uplinks.end()) {
      if (force) return;
      throw HostCtlException("Uplink " + name + " is not connected to virtual switch " + name_);
    }
    vswitch.uplinks.erase(it);
    DropFromOrder(vswitch.teaming, name);
    for (auto& group : vswitch.port_groups) DropFromOrder(group.teaming, name);
  });
}

void VirtualSwitchImpl::SetCdpStatus(int status) {
  CheckFault(Operation::VirtualSwitchImpl_SetCdpStatus);
  if (status < 0 || status > 3) {
    throw HostCtlException("Invalid CDP status " + std::to_string(status));
  }
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch,
                  [&](HostModel& host) { WriteSwitch(host, name_).cdp_status = status; });
}

void VirtualSwitchImpl::SetMTU(int mtu) {
  CheckFault(Operation::VirtualSwitchImpl_SetMTU);
  using HostCtl::Network::OrvkNic;
  if (mtu < OrvkNic::MIN_MTU || mtu > OrvkNic::MAX_MTU) {
    throw HostCtlException("Invalid MTU " + std::to_string(mtu) + " for virtual switch " + name_ +
                           ": it must be between " + std::to_string(OrvkNic::MIN_MTU) + " and " +
                           std::to_string(OrvkNic::MAX_MTU));
  }
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch,
                  [&](HostModel& host) { WriteSwitch(host, name_).mtu = mtu; });
}

int VirtualSwitchImpl::GetNumConfiguredPorts() {
  CheckFault(Operation::VirtualSwitchImpl_GetNumConfiguredPorts);
  return ReadSwitch(name_).configured_ports;
}

int VirtualSwitchImpl::GetMTU() {
  CheckFault(Operation::VirtualSwitchImpl_GetMTU);
  return ReadSwitch(name_).mtu;
}

std::string VirtualSwitchImpl::GetCdpStatusString() {
  CheckFault(Operation::VirtualSwitchImpl_GetCdpStatusString);
  int status = ReadSwitch(name_).cdp_status;
  return status >= 0 && status <= 3 ? kCdpWords[status] : "unknown";
}

bool VirtualSwitchImpl::IsBeaconEnabled() {
  CheckFault(Operation::VirtualSwitchImpl_IsBeaconEnabled);
  HostModel const& host = Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch);
  return !BeaconUsers(host, ReadSwitch(host, name_)).empty();
}

int VirtualSwitchImpl::GetBeaconInterval() {
  CheckFault(Operation::VirtualSwitchImpl_GetBeaconInterval);
  return ReadSwitch(name_).beacon_interval;
}

int VirtualSwitchImpl::GetBeaconThreshold() {
  CheckFault(Operation::VirtualSwitchImpl_GetBeaconThreshold);
  return ReadSwitch(name_).beacon_threshold;
}

std::vector<std::string> VirtualSwitchImpl::NeedBeacon() {
  CheckFault(Operation::VirtualSwitchImpl_NeedBeacon);
  HostModel const& host = Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch);
  return BeaconUsers(host, ReadSwitch(host, name_));
}

std::vector<std::unique_ptr<HostCtl::Network::PortGroup>> VirtualSwitchImpl::GetPortGroups() {
  CheckFault(Operation::VirtualSwitchImpl_GetPortGroups);
  std::vector<std::unique_ptr<HostCtl::Network::PortGroup>> groups;
  auto const& list = ReadSwitch(name_).port_groups;
  for (size_t i = 0; i < list.size(); ++i) {
    groups.push_back(std::make_unique<PortGroupImpl>(std::string(list.NameAt(i))));
  }
  return groups;
}

VirtualSwitchInfoImpl::VirtualSwitchInfoImpl() = default;
VirtualSwitchInfoImpl::~VirtualSwitchInfoImpl() = default;

void VirtualSwitchInfoImpl::Refresh() { CheckFault(Operation::VirtualSwitchInfoImpl_Refresh); }

std::unique_ptr<HostCtl::Network::VirtualSwitch> VirtualSwitchInfoImpl::AddVirtualSwitchWithPolicy(
    NicTeamingPolicy const& teaming, PortSecurityPolicy const& security,
    ShapingPolicy const& shaping, HostCtl::Network::NicCapabilities const& capabilities,
    std::string const& name, unsigned int ports) {
  CheckFault(Operation::VirtualSwitchInfoImpl_AddVirtualSwitchWithPolicy);
  CheckName("Virtual switch", name);
  if (ports < 1 || ports > kMaxPortsPerSwitch) {
    throw HostCtlException("Invalid number of ports " + std::to_string(ports) +
                           ": a virtual switch has 1 to " + std::to_string(kMaxPortsPerSwitch) +
                           " ports");
  }
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch, [&](HostModel& host) {
    if (Sim::FindStandardSwitch(host.vswitch, name)) {
      throw HostCtlException("A virtual switch named " + name + " already exists");
    }
    StandardSwitchState vswitch;
    vswitch.name = name;
    vswitch.configured_ports = static_cast<int>(ports);
    int allocated = 0;
    for (auto const& other : host.vswitch.standard_switches) allocated += NumPorts(other);
    if (allocated + NumPorts(vswitch) > kMaxPortsPerHost) {
      throw HostCtlException("Unable to create virtual switch " + name + " with " +
                             std::to_string(ports) + " ports: " + std::to_string(allocated) +
                             " of the host's " + std::to_string(kMaxPortsPerHost) +
                             " ports are allocated");
    }
    Sim::CheckTeaming(vswitch, "virtual switch " + name, teaming);
    vswitch.teaming = Sim::ToState(teaming);
    vswitch.security = Sim::ToState(security);
    vswitch.shaping = Sim::ToState(shaping);
    Sim::CheckShaping(vswitch);
    vswitch.checksum_offload = capabilities.checksumOffload;
    vswitch.segmentation_offload = capabilities.segmentationOffload;
    vswitch.vlan_tagging = capabilities.vlanTagging;
    host.vswitch.standard_switches.push_back(vswitch);
  });
  return std::make_unique<VirtualSwitchImpl>(name);
}

void VirtualSwitchInfoImpl::RemoveVirtualSwitch(std::string const& name) {
  CheckFault(Operation::VirtualSwitchInfoImpl_RemoveVirtualSwitch);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaVswitch | Sim::kAreaRuntime,
                  [&](HostModel& host) { Sim::RemoveStandardSwitch(host, name); });
}

std::unique_ptr<HostCtl::Network::VirtualSwitch> VirtualSwitchInfoImpl::GetVirtualSwitchByName(
    std::string const& name) {
  CheckFault(Operation::VirtualSwitchInfoImpl_GetVirtualSwitchByName);
  if (!Sim::FindStandardSwitch(Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch).vswitch, name))
    return nullptr;
  return std::make_unique<VirtualSwitchImpl>(name);
}

std::vector<std::unique_ptr<HostCtl::Network::VirtualSwitch>>
VirtualSwitchInfoImpl::GetVirtualSwitches() {
  CheckFault(Operation::VirtualSwitchInfoImpl_GetVirtualSwitches);
  std::vector<std::unique_ptr<HostCtl::Network::VirtualSwitch>> switches;
  for (auto const& vswitch :
       Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch).vswitch.standard_switches) {
    switches.push_back(std::make_unique<VirtualSwitchImpl>(vswitch.name));
  }
  return switches;
}

std::vector<std::unique_ptr<HostCtl::Network::Portset>> VirtualSwitchInfoImpl::GetAllSwitches() {
  CheckFault(Operation::VirtualSwitchInfoImpl_GetAllSwitches);
  std::vector<std::unique_ptr<HostCtl::Network::Portset>> switches;
  HostModel const& host = Sim::ReadHost(Sim::kAreaNic | Sim::kAreaVswitch);
  for (auto const& vswitch : host.vswitch.standard_switches) {
    switches.push_back(std::make_unique<VirtualSwitchImpl>(vswitch.name));
  }
  for (auto const& dvs : host.vswitch.distributed_switches) {
    switches.push_back(std::make_unique<DVSwitchImpl>(dvs.name));
  }
  return switches;
}

}  // namespace OrvkCtl::Network
