// Per-VLAN counters of the uplinks of a switch. The counters are kept with
// the physical NIC; the switch decides which uplinks it answers for.
#include <algorithm>
#include <set>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/portset.h"

namespace HostCtl::Network {
namespace {

using Lib::HostCtlException;

void CheckConnected(Portset& portset, std::string const& uplink) {
  auto uplinks = portset.GetConnectedUplinks();
  if (std::find(uplinks.begin(), uplinks.end(), uplink) == uplinks.end()) {
    throw HostCtlException(uplink + " is not an uplink of switch " + portset.GetName());
  }
}

}  // namespace

std::vector<std::unique_ptr<UplinkVlanStats>> Portset::GetUplinkVlanStats(
    std::string const& uplink) {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::Portset_GetUplinkVlanStats);
  CheckConnected(*this, uplink);
  auto const* nic = OrvkCtl::Sim::FindPnic(OrvkCtl::Sim::ReadHost(OrvkCtl::Sim::kAreaNic | OrvkCtl::Sim::kAreaVswitch).nic, uplink);
  if (!nic) throw HostCtlException("Physical NIC " + uplink + " not found");
  std::vector<std::unique_ptr<UplinkVlanStats>> result;
  if (!nic->vlan_stats_enabled) return result;
  for (auto const& vlan : nic->vlan_stats) {
    result.push_back(std::make_unique<UplinkVlanStats>(
        UplinkVlanStats{vlan.vlan_id, vlan.rx_packets, vlan.tx_packets}));
  }
  return result;
}

void Portset::SetUplinkVlanStats(std::string const& uplink, bool enabled) {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::Portset_SetUplinkVlanStats);
  CheckConnected(*this, uplink);
  std::string const switchName = GetName();
  OrvkCtl::Sim::ChangeHost(OrvkCtl::Sim::kAreaNic | OrvkCtl::Sim::kAreaVswitch, [&](OrvkCtl::Sim::HostModel& host) {
    auto* nic = OrvkCtl::Sim::FindPnic(host.nic, uplink);
    if (!nic) throw HostCtlException("Physical NIC " + uplink + " not found");
    if (nic->vlan_stats_enabled == enabled) return;
    nic->vlan_stats_enabled = enabled;
    nic->vlan_stats.clear();
    if (!enabled) return;
    std::set<uint16_t> vlans = {0};
    if (auto const* vswitch = OrvkCtl::Sim::FindStandardSwitch(host.vswitch, switchName)) {
      for (auto const& group : vswitch->port_groups) vlans.insert(group.vlan_id);
    }
    for (uint16_t vlan : vlans) nic->vlan_stats.push_back({vlan, 0, 0});
  });
}

}  // namespace HostCtl::Network
