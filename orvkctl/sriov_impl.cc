// SR-IOV physical functions and their virtual functions.
#include <string>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::Operation;

Sim::PnicState const& SriovNic(std::string const& name) {
  auto const* nic = Sim::FindPnic(Sim::ReadHost(Sim::kAreaNic).nic, name);
  if (!nic) throw HostCtlException("Physical NIC " + name + " not found");
  if (!nic->sriov.enabled)
    throw HostCtlException("Physical NIC " + name + " is not SR-IOV enabled");
  return *nic;
}

}  // namespace

HostCtl::Network::PnicList NetworkInfoImpl::GetSriovNics() {
  CheckFault(Operation::NetworkInfoImpl_GetSriovNics);
  HostCtl::Network::PnicList pnics;
  for (auto const& nic : Sim::ReadHost(Sim::kAreaNic).nic.pnics) {
    if (nic.sriov.enabled) pnics.push_back(std::make_unique<PnicImpl>(nic.name));
  }
  return pnics;
}

std::unique_ptr<HostCtl::Network::Pnic> NetworkInfoImpl::GetSriovNicByName(
    std::string const& name) {
  CheckFault(Operation::NetworkInfoImpl_GetSriovNicByName);
  auto const* nic = Sim::FindPnic(Sim::ReadHost(Sim::kAreaNic).nic, name);
  if (!nic || !nic->sriov.enabled) return nullptr;
  return std::make_unique<PnicImpl>(name);
}

std::vector<HostCtl::Network::SriovNicVFInfo> NetworkInfoImpl::GetSriovNicVFInfo(
    std::string const& name) {
  CheckFault(Operation::NetworkInfoImpl_GetSriovNicVFInfo);
  std::vector<HostCtl::Network::SriovNicVFInfo> result;
  for (auto const& vf : SriovNic(name).sriov.vfs) {
    result.push_back({static_cast<uint8_t>(vf.vf_id), vf.active, vf.pci_address,
                      std::to_string(vf.owner_world)});
  }
  return result;
}

void NetworkInfoImpl::GetSriovNicVFStats(HostCtl::Network::SriovNicVFStats* stats,
                                         std::string const& name, int vfId) {
  CheckFault(Operation::NetworkInfoImpl_GetSriovNicVFStats);
  for (auto const& vf : SriovNic(name).sriov.vfs) {
    if (vfId < 0 || vf.vf_id != static_cast<uint32_t>(vfId)) continue;
    auto const& s = vf.stats;
    *stats = {s.rx_unicast_pkts,   s.rx_unicast_bytes,   s.rx_multicast_pkts, s.rx_multicast_bytes,
              s.rx_broadcast_pkts, s.rx_broadcast_bytes, s.rx_out_of_buffer,  s.rx_error_drops,
              s.rx_lro_pkts,       s.rx_lro_bytes,       s.tx_unicast_pkts,   s.tx_unicast_bytes,
              s.tx_multicast_pkts, s.tx_multicast_bytes, s.tx_broadcast_pkts, s.tx_broadcast_bytes,
              s.tx_errors,         s.tx_discards,        s.tx_tso_pkts,       s.tx_tso_bytes};
    return;
  }
  throw HostCtlException("Physical NIC " + name + " has no VF " + std::to_string(vfId));
}

}  // namespace OrvkCtl::Network
