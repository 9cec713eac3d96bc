#include "runtime/VmPortWalk.h"

#include "hostctl/dvswitch.h"
#include "hostctl/port.h"
#include "hostctl/virtual_switch.h"

namespace CorvaneCli::NetworkNamespace {

void WalkVmPorts(bool askDistributed, VmPortVisitor const& visit) {
  OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
  for (auto const& portset : switchInfo.GetAllSwitches()) {
    std::string name = portset->GetName();
    bool legacy = switchInfo.IsLegacySwitch(name);
    bool distributed = askDistributed ? switchInfo.IsDVSwitch(name) : true;
    bool opaque = switchInfo.IsOpaqueSwitch(name);
    VmSwitchKind kind = legacy || opaque ? VmSwitchKind::LegacyOrOpaque
                        : distributed    ? VmSwitchKind::Distributed
                                         : VmSwitchKind::Unknown;
    for (auto const& entry : portset->GetPorts()) {
      auto* port = dynamic_cast<OrvkCtl::Network::PortImpl*>(entry.get());
      if (!port) continue;
      uint32_t world = port->GetWorldLeader();
      if (world == 0) continue;
      visit(*portset, kind, *port, world);
    }
  }
}

std::string DVPortgroupOf(HostCtl::Network::Portset& portset, OrvkCtl::Network::PortImpl& port) {
  auto* impl = dynamic_cast<OrvkCtl::Network::PortsetImpl*>(&portset);
  if (!impl) return std::string();
  OrvkCtl::Network::DVPortImpl dvport(port.GetDVPortID(), impl->GetDvsIdentifier());
  return dvport.GetDVPortgroupId();
}

}  // namespace CorvaneCli::NetworkNamespace
