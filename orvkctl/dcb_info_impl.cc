// Data Center Bridging state of a physical NIC.
#include <algorithm>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/dcb.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::Operation;

void CopyBytes(Sim::TcBytes const& from, uint8_t (&to)[8]) {
  std::copy(from.begin(), from.end(), to);
}

}  // namespace

DcbInfoImpl::DcbInfoImpl(std::string const& nicName) : name_(nicName) {}
DcbInfoImpl::~DcbInfoImpl() = default;

void DcbInfoImpl::Refresh() {
  CheckFault(Operation::DcbInfoImpl_Refresh);
  auto const* nic = Sim::FindPnic(Sim::ReadHost(Sim::kAreaNic).nic, name_);
  if (!nic) throw HostCtlException("Physical NIC " + name_ + " not found");
  if (!nic->dcb.supported) throw HostCtlException("DCB is not supported by " + name_);
  cached_ = std::make_unique<Sim::DcbState>(nic->dcb);
}

Sim::DcbState const& DcbInfoImpl::Cached() {
  EnsureFresh();
  return *cached_;
}

uint32_t DcbInfoImpl::GetMode() {
  CheckFault(Operation::DcbInfoImpl_GetMode);
  return Cached().mode;
}

bool DcbInfoImpl::IsEnabled() {
  CheckFault(Operation::DcbInfoImpl_IsEnabled);
  return Cached().enabled;
}

HostCtl::Network::DcbCapabilities DcbInfoImpl::GetCapabilities() {
  CheckFault(Operation::DcbInfoImpl_GetCapabilities);
  auto const& dcb = Cached();
  HostCtl::Network::DcbCapabilities caps;
  caps.priorityGroup = dcb.cap_priority_group;
  caps.priorityFlowControl = dcb.cap_pfc;
  caps.upToTcMap = dcb.cap_up_to_tc;
  caps.pgTrafficClasses = dcb.cap_pg_traffic_classes;
  caps.pfcTrafficClasses = dcb.cap_pfc_traffic_classes;
  return caps;
}

bool DcbInfoImpl::IsPfcEnabled() {
  CheckFault(Operation::DcbInfoImpl_IsPfcEnabled);
  return Cached().pfc_enabled;
}

uint8_t DcbInfoImpl::GetPfcConfig() {
  CheckFault(Operation::DcbInfoImpl_GetPfcConfig);
  return Cached().pfc_config;
}

HostCtl::Network::DcbIeeeEtsConfig DcbInfoImpl::GetIeeeEtsConfig() {
  CheckFault(Operation::DcbInfoImpl_GetIeeeEtsConfig);
  auto const& dcb = Cached();
  HostCtl::Network::DcbIeeeEtsConfig ets;
  ets.willing = dcb.ets_willing;
  ets.capacity = dcb.ets_capacity;
  ets.creditBasedShaperSupported = dcb.ets_cbs_supported;
  CopyBytes(dcb.ets_tx_bandwidth, ets.txBandwidth);
  CopyBytes(dcb.ets_rx_bandwidth, ets.rxBandwidth);
  CopyBytes(dcb.ets_tsa, ets.tsaAssignment);
  CopyBytes(dcb.ets_priority, ets.priorityAssignment);
  CopyBytes(dcb.ets_rec_bandwidth, ets.recommendedTcBandwidth);
  CopyBytes(dcb.ets_rec_tsa, ets.recommendedTsaAssignment);
  CopyBytes(dcb.ets_rec_priority, ets.recommendedPriorityAssignment);
  return ets;
}

HostCtl::Network::DcbIeeePfcConfig DcbInfoImpl::GetIeeePfcConfig() {
  CheckFault(Operation::DcbInfoImpl_GetIeeePfcConfig);
  auto const& dcb = Cached();
  HostCtl::Network::DcbIeeePfcConfig pfc;
  pfc.trafficClasses = dcb.pfc_traffic_classes;
  pfc.pfcMask = dcb.pfc_mask;
  pfc.macsecBypass = dcb.pfc_macsec_bypass;
  pfc.delay = dcb.pfc_delay;
  CopyBytes(dcb.pfc_sent, pfc.sentFrames);
  CopyBytes(dcb.pfc_received, pfc.receivedFrames);
  return pfc;
}

std::vector<HostCtl::Network::DcbApp> DcbInfoImpl::GetAppInfo() {
  CheckFault(Operation::DcbInfoImpl_GetAppInfo);
  std::vector<HostCtl::Network::DcbApp> apps;
  for (auto const& app : Cached().apps) {
    apps.push_back({app.app_type, app.protocol_id, app.user_priority});
  }
  return apps;
}

}  // namespace OrvkCtl::Network
