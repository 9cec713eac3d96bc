// Netqueue, software simulation and hardware capabilities of a physical NIC.
#include <algorithm>
#include <iterator>
#include <string>

#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/pnic.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::PnicNetqueueInfo;
using HostCtl::Network::PnicNetqueuePluginInfo;
using HostCtl::Network::PnicSoftwareSimulation;
using Sim::CheckFault;
using Sim::Operation;
using Sim::PnicState;

// Load balancer settings by bit number, as the driver interface names them.
char const* const kSettingNames[PnicNetqueueInfo::kSettingCount] = {
    "RxQPair",    "RxQNoFeature", "PreEmptibleQ", "RxQLatency", "RxDynamicLB", "DynamicQPool",
    "MacLearnLB", "RSS",          "LRO",          "GeneveOAM",  "RSSLRO"};

// Software simulated functions by bit number of the simulation mask.
char const* const kSimulationNames[] = {"IPv4 checksum offload",
                                        "IPv4 TCP segmentation offload",
                                        "scatter gather",
                                        "offset based encapsulation offload",
                                        "VXLAN encapsulation offload",
                                        "IPv6 TCP segmentation offload",
                                        "IPv6 extension header TCP segmentation offload",
                                        "IPv6 checksum offload",
                                        "IPv6 extension header checksum offload",
                                        "high DMA",
                                        "scatter gather span multiple pages",
                                        "TX VLAN tagging",
                                        "RX VLAN untagging",
                                        "Geneve encapsulation offload"};

// Hardware capability names by bit number.
char const* const kHwCapNames[] = {"SG",
                                   "IP_CSO",
                                   "HIGH_DMA",
                                   "SG_SPAN_PAGES",
                                   "HW_TX_VLAN",
                                   "HW_RX_VLAN",
                                   "TSO",
                                   "IP6_CSO",
                                   "TSO6",
                                   "TSO6_EXT_HDR",
                                   "IP6_CSO_EXT",
                                   "ENCAP",
                                   "OFFSET_ENCAP",
                                   "VXLAN_OFFLOAD",
                                   "GENEVE_OFFLOAD",
                                   "NETQUEUE",
                                   "RSS",
                                   "LRO",
                                   "DCB",
                                   "PTP",
                                   "WAKE_ON_LAN",
                                   "PAUSE_FRAMES",
                                   "JUMBO_FRAMES",
                                   "SRIOV",
                                   "RDMA",
                                   "TX_TIMESTAMP",
                                   "RX_TIMESTAMP",
                                   "TX_SCHEDULER",
                                   "MAC_FILTER",
                                   "VLAN_FILTER",
                                   "FEC",
                                   "LINK_FLAP_GUARD",
                                   "QINQ",
                                   "MACSEC",
                                   "NVGRE_OFFLOAD",
                                   "TX_RATE_LIMIT"};

constexpr uint32_t kAllSimulation = (1u << std::size(kSimulationNames)) - 1;

void CheckNetqueue(PnicState const& nic) {
  if (!nic.netqueue.supported) {
    throw HostCtlException("Netqueue is not supported by " + nic.name);
  }
}

void CheckQueueCount(PnicState const& nic, char const* what, uint32_t count, uint32_t maximum) {
  if (count < 1 || count > maximum) {
    throw HostCtlException(std::string(what) + " netqueue count " + std::to_string(count) + " of " +
                           nic.name + " is out of range 1 to " + std::to_string(maximum));
  }
}

}  // namespace

void PnicImpl::GetNetqueueInfo(PnicNetqueueInfo& info) {
  CheckFault(Operation::PnicImpl_GetNetqueueInfo);
  auto const& nic = Cached();
  CheckNetqueue(nic);
  auto const& q = nic.netqueue;
  info.txQueueCount = q.tx_queues;
  info.rxQueueCount = q.rx_queues;
  info.balancerEnabled = q.balancer_enabled;
  for (int i = 0; i < PnicNetqueueInfo::kSettingCount; ++i) {
    info.allowed[i] = (q.allowed_settings >> i) & 1;
    info.supported[i] = (q.supported_settings >> i) & 1;
  }
  for (int i = 0; i < PnicNetqueueInfo::kFilterClassCount; ++i) {
    info.filterClasses[i] = (q.filter_classes >> i) & 1;
  }
  for (auto const& plugin : q.plugins) {
    PnicNetqueuePluginInfo entry{plugin.module, plugin.plugin, plugin.description};
    info.availablePlugins.push_back(entry);
    if (plugin.active) info.activePlugins.push_back(entry);
  }
}

void PnicImpl::SetNetqueueInfo(PnicNetqueueInfo& info) {
  CheckFault(Operation::PnicImpl_SetNetqueueInfo);
  Change([&](PnicState& nic) {
    CheckNetqueue(nic);
    auto& q = nic.netqueue;
    for (int i = 0; i < PnicNetqueueInfo::kSettingCount; ++i) {
      uint32_t const bit = 1u << i;
      if (!(info.settingsMask & bit)) continue;
      if (info.allowed[i] && !(q.supported_settings & bit)) {
        throw HostCtlException(std::string("Load balancer setting ") + kSettingNames[i] +
                               " is not supported by " + nic.name);
      }
      q.allowed_settings =
          info.allowed[i] ? (q.allowed_settings | bit) : (q.allowed_settings & ~bit);
    }
    if (info.applyTxQueueCount) {
      CheckQueueCount(nic, "TX", info.txQueueCount, q.max_tx_queues);
      q.tx_queues = info.txQueueCount;
    }
    if (info.applyRxQueueCount) {
      CheckQueueCount(nic, "RX", info.rxQueueCount, q.max_rx_queues);
      q.rx_queues = info.rxQueueCount;
    }
    if (info.applyBalancerState) q.balancer_enabled = info.balancerEnabled;
    if (info.applyPluginState) {
      if (info.activePlugins.size() != 1) {
        throw HostCtlException("Exactly one netqueue balancer plugin must be named for " +
                               nic.name);
      }
      auto const& wanted = info.activePlugins.front();
      auto found = std::find_if(q.plugins.begin(), q.plugins.end(), [&](auto const& plugin) {
        return plugin.module == wanted.moduleName && plugin.plugin == wanted.pluginName;
      });
      if (found == q.plugins.end()) {
        throw HostCtlException("Netqueue balancer plugin " + wanted.pluginName + " of module " +
                               wanted.moduleName + " not found on " + nic.name);
      }
      found->active = info.pluginEnabled;
    }
  });
}

void PnicImpl::GetSoftwareSimulation(PnicSoftwareSimulation& settings) {
  CheckFault(Operation::PnicImpl_GetSoftwareSimulation);
  uint32_t const on = Cached().software_simulation.simulated;
  auto bit = [on](uint32_t mask) { return (on & mask) != 0; };
  settings.ipv4Cso = bit(PnicSoftwareSimulation::MASK_IPV4_CSO);
  settings.ipv4Tso = bit(PnicSoftwareSimulation::MASK_IPV4_TSO);
  settings.scatterGather = bit(PnicSoftwareSimulation::MASK_SG);
  settings.offsetBasedOffload = bit(PnicSoftwareSimulation::MASK_OBO);
  settings.vxlanEncap = bit(PnicSoftwareSimulation::MASK_VXLAN_ENCAP);
  settings.ipv6Tso = bit(PnicSoftwareSimulation::MASK_IPV6_TSO);
  settings.ipv6TsoExt = bit(PnicSoftwareSimulation::MASK_IPV6_TSO_EXT);
  settings.ipv6Cso = bit(PnicSoftwareSimulation::MASK_IPV6_CSO);
  settings.ipv6CsoExt = bit(PnicSoftwareSimulation::MASK_IPV6_CSO_EXT);
  settings.highDma = bit(PnicSoftwareSimulation::MASK_HIGH_DMA);
  settings.scatterGatherSpanPages = bit(PnicSoftwareSimulation::MASK_SG_SPAN_PAGES);
  settings.vlanTagging = bit(PnicSoftwareSimulation::MASK_TAGGING);
  settings.vlanUntagging = bit(PnicSoftwareSimulation::MASK_UNTAGGING);
  settings.geneveOffload = bit(PnicSoftwareSimulation::MASK_GENEVE_OFFLOAD);
}

void PnicImpl::SetSoftwareSimulation(PnicSoftwareSimulation& settings) {
  CheckFault(Operation::PnicImpl_SetSoftwareSimulation);
  bool const values[] = {settings.ipv4Cso,
                         settings.ipv4Tso,
                         settings.scatterGather,
                         settings.offsetBasedOffload,
                         settings.vxlanEncap,
                         settings.ipv6Tso,
                         settings.ipv6TsoExt,
                         settings.ipv6Cso,
                         settings.ipv6CsoExt,
                         settings.highDma,
                         settings.scatterGatherSpanPages,
                         settings.vlanTagging,
                         settings.vlanUntagging,
                         settings.geneveOffload};
  Change([&](PnicState& nic) {
    auto& sim = nic.software_simulation;
    for (size_t i = 0; i < std::size(values); ++i) {
      uint32_t const bit = 1u << i;
      if (!(settings.mask & bit)) continue;
      if (!values[i] && (sim.required & bit)) {
        throw HostCtlException(std::string("Software simulation of ") + kSimulationNames[i] +
                               " cannot be disabled on " + nic.name +
                               ": the device has no hardware support for it");
      }
      sim.simulated = values[i] ? (sim.simulated | bit) : (sim.simulated & ~bit);
    }
    sim.simulated &= kAllSimulation;
  });
}

void PnicImpl::GetHwCapabilities(HostCtl::Network::PnicHwCapabilities& caps) {
  CheckFault(Operation::PnicImpl_GetHwCapabilities);
  auto const& nic = Cached();
  if (!nic.hw_cap.reported) {
    throw HostCtlException("Driver " + nic.driver + " of " + nic.name +
                           " does not report hardware capabilities");
  }
  caps.supported = nic.hw_cap.supported;
  caps.activated = Sim::ActivatedHwCaps(nic);
}

std::string PnicImpl::GetHwCapName(uint8_t bit) {
  CheckFault(Operation::PnicImpl_GetHwCapName);
  if (bit < std::size(kHwCapNames)) return kHwCapNames[bit];
  return "CAP_BIT_" + std::to_string(bit);
}

}  // namespace OrvkCtl::Network
