#include "runtime/VmPortWalk.h"

#include "hostctl/dvswitch.h"
#include "hostctl/port.h"
#include "hostctl/virtual_switch.h"
#include "toolbase/call_spec.h"

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

bool VisitPortById(long wanted, Toolbase::CallSpec::Output& output,
                   std::function<void(OrvkCtl::Network::PortImpl& port)> const& visit) {
  OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
  for (auto const& portset : switchInfo.GetAllSwitches()) {
    for (auto const& entry : portset->GetPorts()) {
      if (entry->GetId() != wanted) continue;
      auto* port = dynamic_cast<OrvkCtl::Network::PortImpl*>(entry.get());
      if (!port) continue;
      visit(*port);
      return true;
    }
  }
  output.AddErrorMessage("Couldn't find requested port");
  return false;
}

}  // namespace CorvaneCli::NetworkNamespace
