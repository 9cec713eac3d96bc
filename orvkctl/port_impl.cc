// Switch ports of the simulated host, with their counters and filters.
#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/port.h"
#include "hostctl/virtual_switch.h"

namespace HostCtl::Network {
Port::~Port() = default;
}  // namespace HostCtl::Network

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::Operation;

Sim::PortState const& ReadPort(int id) {
  auto const* port = Sim::FindPort(
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime).runtime,
      static_cast<uint32_t>(id));
  if (!port || id < 0) throw HostCtlException("Port " + std::to_string(id) + " not found");
  return *port;
}

}  // namespace

const int PortImpl::TYPE_UPLINK = Sim::kPortTypeUplink;

PortImpl::PortImpl(int id) : id_(id) {}
PortImpl::~PortImpl() = default;

void PortImpl::Refresh() {
  CheckFault(Operation::PortImpl_Refresh);
  ReadPort(id_);
}

int PortImpl::GetId() {
  CheckFault(Operation::PortImpl_GetId);
  return id_;
}

int PortImpl::GetType() {
  CheckFault(Operation::PortImpl_GetType);
  return ReadPort(id_).type;
}

HostCtl::Network::PortStats PortImpl::GetPortStats() {
  CheckFault(Operation::PortImpl_GetPortStats);
  auto const& port = ReadPort(id_);
  HostCtl::Network::PortStats stats;
  stats.bytesSent = port.bytes_sent;
  stats.bytesReceived = port.bytes_received;
  return stats;
}

void PortImpl::GetPacketStats(HostCtl::Network::PacketStats& stats) {
  CheckFault(Operation::PortImpl_GetPacketStats);
  auto const& port = ReadPort(id_);
  stats.packetsSent = port.packets_sent;
  stats.multicastPacketsSent = port.multicast_sent;
  stats.broadcastPacketsSent = port.broadcast_sent;
  stats.packetsReceived = port.packets_received;
  stats.multicastPacketsReceived = port.multicast_received;
  stats.broadcastPacketsReceived = port.broadcast_received;
  stats.transmitPacketsDropped = port.tx_dropped;
  stats.receivePacketsDropped = port.rx_dropped;
}

std::vector<std::unique_ptr<HostCtl::Network::FilterStats>> PortImpl::GetFilterStats() {
  CheckFault(Operation::PortImpl_GetFilterStats);
  std::vector<std::unique_ptr<HostCtl::Network::FilterStats>> filters;
  for (auto const& filter : ReadPort(id_).filters) {
    auto stats = std::make_unique<HostCtl::Network::FilterStats>();
    stats->name = filter.name;
    stats->chainKey = filter.chain_key;
    stats->active = filter.active;
    stats->isOutbound = filter.outbound;
    stats->hasDetail = filter.has_detail;
    stats->packetsIn = filter.packets_in;
    stats->packetsOut = filter.packets_out;
    stats->packetsDropped = filter.packets_dropped;
    stats->packetsFiltered = filter.packets_filtered;
    stats->packetsFaulted = filter.packets_faulted;
    stats->packetsQueued = filter.packets_queued;
    stats->packetsInjected = filter.packets_injected;
    stats->packetErrors = filter.packet_errors;
    filters.push_back(std::move(stats));
  }
  return filters;
}

uint32_t PortImpl::GetWorldLeader() {
  CheckFault(Operation::PortImpl_GetWorldLeader);
  return ReadPort(id_).world_leader;
}

std::string PortImpl::GetPortGroupName() {
  CheckFault(Operation::PortImpl_GetPortGroupName);
  return ReadPort(id_).portgroup;
}

std::string PortImpl::GetDVPortID() {
  CheckFault(Operation::PortImpl_GetDVPortID);
  return ReadPort(id_).dvport_id;
}

std::vector<HostCtl::Network::MacAddress> PortImpl::GetMacAddresses() {
  CheckFault(Operation::PortImpl_GetMacAddresses);
  auto const& port = ReadPort(id_);
  std::vector<HostCtl::Network::MacAddress> addresses;
  if (!port.mac_address.empty()) addresses.emplace_back(port.mac_address);
  return addresses;
}

HostCtl::Network::Ipv4Address PortImpl::GetPortClientIpv4Address() {
  CheckFault(Operation::PortImpl_GetPortClientIpv4Address);
  Sim::HostModel const& host =
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  auto const* port = Sim::FindPort(host.runtime, static_cast<uint32_t>(id_));
  if (!port || id_ < 0) throw HostCtlException("Port " + std::to_string(id_) + " not found");
  if (!port->client_ipv4.empty()) return HostCtl::Network::Ipv4Address(port->client_ipv4);
  // A host interface's address is the one it holds.
  auto const* nic = Sim::FindInterface(host.ip, port->client);
  if (port->type == Sim::kPortTypeInterface && nic) {
    return HostCtl::Network::Ipv4Address(nic->ip.ipv4_address);
  }
  return HostCtl::Network::Ipv4Address();
}

std::string PortImpl::GetSchedTeamUplink() {
  CheckFault(Operation::PortImpl_GetSchedTeamUplink);
  Sim::HostModel const& host =
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  auto const* port = Sim::FindPort(host.runtime, static_cast<uint32_t>(id_));
  if (!port || id_ < 0) throw HostCtlException("Port " + std::to_string(id_) + " not found");
  return Sim::TeamUplink(host, *port);
}

std::vector<std::unique_ptr<HostCtl::Network::Port>> PortsetImpl::GetPorts() {
  CheckFault(Operation::PortsetImpl_GetPorts);
  Sim::HostModel const& host =
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  if (!Sim::FindStandardSwitch(host.vswitch, name_)) {
    throw HostCtlException("Virtual switch " + name_ + " not found");
  }
  std::vector<std::unique_ptr<HostCtl::Network::Port>> ports;
  for (auto const& port : host.runtime.ports) {
    if (port.portset == name_) ports.push_back(std::make_unique<PortImpl>(port.id));
  }
  return ports;
}

}  // namespace OrvkCtl::Network
