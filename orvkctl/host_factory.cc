#include "fault.h"
#include "hostctl/host.h"
#include "hostctl/network_info.h"
#include "hostctl/system.h"

namespace HostCtl {

Host::~Host() = default;

std::unique_ptr<Network::NetworkInfo> Host::GetNetworkInfo() {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::Host_GetNetworkInfo);
  return std::make_unique<OrvkCtl::Network::NetworkInfoImpl>();
}

std::unique_ptr<System::SystemInfo> Host::GetSystemInfo() {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::Host_GetSystemInfo);
  return std::make_unique<OrvkCtl::System::SystemInfoImpl>();
}

std::unique_ptr<Host> HostFactory::GetHost() {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::HostFactory_GetHost);
  return std::make_unique<Host>();
}

}  // namespace HostCtl
