#include "fault.h"
#include "hostctl/host.h"
#include "hostctl/network_info.h"
#include "hostctl/system.h"

namespace HostCtl {

Host::~Host() = default;

std::unique_ptr<Network::NetworkInfo> Host::GetNetworkInfo() {
  OrvkCtl::Sim::CheckFault("Host::GetNetworkInfo");
  return std::make_unique<OrvkCtl::Network::NetworkInfoImpl>();
}

std::unique_ptr<System::SystemInfo> Host::GetSystemInfo() {
  OrvkCtl::Sim::CheckFault("Host::GetSystemInfo");
  return std::make_unique<OrvkCtl::System::SystemInfoImpl>();
}

std::unique_ptr<Host> HostFactory::GetHost() {
  OrvkCtl::Sim::CheckFault("HostFactory::GetHost");
  return std::make_unique<Host>();
}

}  // namespace HostCtl
