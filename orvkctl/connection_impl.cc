// Open sockets of the simulated host's netstack instances, and the names of
// the worlds that own them.
#include "fault.h"
#include "host_backend.h"
#include "hostctl/network_info.h"
#include "hostctl/resource.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::TcpIpConnection;

// IANA protocol numbers, for the record's first word.
uint32_t ProtocolNumber(std::string const& protocol) {
  if (protocol == "tcp") return 6;
  if (protocol == "udp") return 17;
  return 0;
}

void Collect(std::vector<TcpIpConnection>& out, std::string const& key,
             std::string const& protocol) {
  auto const& host = Sim::ReadHost(Sim::kAreaIp | Sim::kAreaRuntime);
  if (!Sim::FindNetstack(host.ip, key)) {
    throw HostCtlException("Netstack instance " + key + " does not exist");
  }
  for (auto const& socket : host.ip.connections) {
    if (socket.netstack != key || socket.protocol != protocol) continue;
    TcpIpConnection connection;
    connection.protocol = ProtocolNumber(protocol);
    connection.recvQ = socket.recv_q;
    connection.sendQ = socket.send_q;
    connection.localAddress = socket.local_address;
    connection.localPort = socket.local_port;
    connection.foreignAddress = socket.foreign_address;
    connection.foreignPort = socket.foreign_port;
    connection.state = socket.state;
    connection.worldId = socket.world_id;
    connection.ccAlgo = socket.cc_algo;
    out.push_back(connection);
  }
}

}  // namespace

void NetworkInfoImpl::GetCurrentTcpOrvikConnections(std::vector<TcpIpConnection>& out,
                                                    std::string const& key) {
  Sim::CheckFault(Sim::Operation::NetworkInfoImpl_GetCurrentTcpOrvikConnections);
  Collect(out, key, "tcp");
}

void NetworkInfoImpl::GetCurrentUdpOrvikConnections(std::vector<TcpIpConnection>& out,
                                                    std::string const& key) {
  Sim::CheckFault(Sim::Operation::NetworkInfoImpl_GetCurrentUdpOrvikConnections);
  Collect(out, key, "udp");
}

void NetworkInfoImpl::GetCurrentIpOrvikConnections(std::vector<TcpIpConnection>& out,
                                                   std::string const& key) {
  Sim::CheckFault(Sim::Operation::NetworkInfoImpl_GetCurrentIpOrvikConnections);
  Collect(out, key, "ip");
}

}  // namespace OrvkCtl::Network

namespace OrvkCtl::Resource {

ResourceInfoImpl::ResourceInfoImpl() = default;
ResourceInfoImpl::~ResourceInfoImpl() = default;

void ResourceInfoImpl::Refresh() { Sim::CheckFault(Sim::Operation::ResourceInfoImpl_Refresh); }

std::string ResourceInfoImpl::GetWorldName(unsigned long worldId) {
  Sim::CheckFault(Sim::Operation::ResourceInfoImpl_GetWorldName);
  for (auto const& world : Sim::ReadHost(Sim::kAreaIp | Sim::kAreaRuntime).runtime.worlds) {
    if (world.id == worldId) return world.name;
  }
  return std::string();
}

}  // namespace OrvkCtl::Resource
