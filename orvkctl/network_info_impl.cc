#include "fault.h"
#include "host_backend.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"

namespace HostCtl::Network {

NetworkInfo::~NetworkInfo() = default;

std::unique_ptr<NetworkInfo> NetworkFactory::GetNetworkInfo() {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::NetworkFactory_GetNetworkInfo);
  return std::make_unique<OrvkCtl::Network::NetworkInfoImpl>();
}

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {

using Sim::CheckFault;
using Sim::Operation;

NetworkInfoImpl::NetworkInfoImpl() = default;
NetworkInfoImpl::~NetworkInfoImpl() = default;

void NetworkInfoImpl::Refresh() { CheckFault(Operation::NetworkInfoImpl_Refresh); }

HostCtl::Network::PnicList NetworkInfoImpl::GetPnics() {
  CheckFault(Operation::NetworkInfoImpl_GetPnics);
  HostCtl::Network::PnicList pnics;
  auto const& nics = Sim::ReadHost(Sim::kAreaNic).nic.pnics;
  for (size_t i = 0; i < nics.size(); ++i) {
    pnics.push_back(std::make_unique<PnicImpl>(std::string(nics.NameAt(i))));
  }
  return pnics;
}

std::unique_ptr<HostCtl::Network::Pnic> NetworkInfoImpl::GetPnicByName(std::string const& name) {
  CheckFault(Operation::NetworkInfoImpl_GetPnicByName);
  if (!Sim::FindPnic(Sim::ReadHost(Sim::kAreaNic).nic, name)) return nullptr;
  return std::make_unique<PnicImpl>(name);
}

}  // namespace OrvkCtl::Network
