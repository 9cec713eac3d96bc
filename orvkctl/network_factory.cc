// The network factory's look-ups of switches and port groups.
#include "fault.h"
#include "host_backend.h"
#include "hostctl/network_info.h"
#include "hostctl/port_group_impl.h"
#include "hostctl/virtual_switch.h"

namespace HostCtl::Network {

std::unique_ptr<VirtualSwitch> NetworkFactory::GetVirtualSwitchById(std::string const& name) {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::NetworkFactory_GetVirtualSwitchById);
  if (!OrvkCtl::Sim::FindStandardSwitch(OrvkCtl::Sim::ReadHost(OrvkCtl::Sim::kAreaVswitch).vswitch, name)) {
    throw Lib::HostCtlException("Virtual switch " + name + " not found");
  }
  return std::make_unique<OrvkCtl::Network::VirtualSwitchImpl>(name);
}

std::unique_ptr<PortGroup> NetworkFactory::GetPortGroupByName(std::string const& name) {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::NetworkFactory_GetPortGroupByName);
  if (!OrvkCtl::Sim::FindPortGroup(OrvkCtl::Sim::ReadHost(OrvkCtl::Sim::kAreaVswitch).vswitch, name)) return nullptr;
  return std::make_unique<OrvkCtl::Network::PortGroupImpl>(name);
}

}  // namespace HostCtl::Network
