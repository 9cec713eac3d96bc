// Distributed switches of the simulated host and their DVPorts. Whether a
// DVPort is in use is told by the switch ports of the runtime area.
#include <algorithm>

#include "fault.h"
#include "host_store.h"
#include "hostctl/dvswitch.h"
#include "hostctl/network_info.h"
#include "hostctl/port.h"
#include "hostctl/virtual_switch.h"

namespace HostCtl::Network {
DVSwitch::~DVSwitch() = default;
DVPort::~DVPort() = default;

std::unique_ptr<DVSwitch> NetworkFactory::GetDVSwitchByName(std::string const& name) {
  OrvkCtl::Sim::CheckFault("NetworkFactory::GetDVSwitchByName");
  if (!OrvkCtl::Sim::FindDistributedSwitch(OrvkCtl::Sim::ReadHost(OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaNic | OrvkCtl::Sim::kAreaIp | OrvkCtl::Sim::kAreaRuntime).vswitch, name)) {
    throw Lib::HostCtlException("Distributed switch " + name + " not found");
  }
  return std::make_unique<OrvkCtl::Network::DVSwitchImpl>(name);
}

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::DistributedSwitchState;
using Sim::HostModel;

// Ports a distributed switch's portset keeps beyond its DVPorts.
constexpr int kReservedPorts = 8;
char const* const kCdpWords[] = {"down", "listen", "advertise", "both"};

DistributedSwitchState const& ReadDvs(HostModel const& host, std::string const& name) {
  auto const* dvs = Sim::FindDistributedSwitch(host.vswitch, name);
  if (!dvs) throw HostCtlException("Distributed switch " + name + " not found");
  return *dvs;
}

DistributedSwitchState const& ReadDvs(std::string const& name) {
  return ReadDvs(Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime), name);
}

DistributedSwitchState const* FindDvsById(HostModel const& host, std::string const& id) {
  for (auto const& dvs : host.vswitch.distributed_switches) {
    if (dvs.id == id) return &dvs;
  }
  return nullptr;
}

Sim::DVPortState const* FindDVPort(DistributedSwitchState const& dvs, std::string const& id) {
  for (auto const& port : dvs.ports) {
    if (port.id == id) return &port;
  }
  return nullptr;
}

// The switch and port of a DVPort; throws when either is unknown.
std::pair<DistributedSwitchState const*, Sim::DVPortState const*> ReadDVPort(
    HostModel const& host, std::string const& switchId, std::string const& portId) {
  auto const* dvs = FindDvsById(host, switchId);
  if (!dvs) throw HostCtlException("Distributed switch with id " + switchId + " not found");
  auto const* port = FindDVPort(*dvs, portId);
  if (!port) {
    throw HostCtlException("DVPort " + portId + " not found on distributed switch " + dvs->name);
  }
  return {dvs, port};
}

}  // namespace

// ---- DVSwitchImpl ----

DVSwitchImpl::DVSwitchImpl(std::string const& name) : name_(name) {}
DVSwitchImpl::~DVSwitchImpl() = default;

void DVSwitchImpl::Refresh() {
  CheckFault("DVSwitchImpl::Refresh");
  ReadDvs(name_);
}

std::string DVSwitchImpl::GetName() {
  CheckFault("DVSwitchImpl::GetName");
  EnsureFresh();
  return name_;
}

std::vector<std::string> DVSwitchImpl::GetUplinks() {
  CheckFault("DVSwitchImpl::GetUplinks");
  return ReadDvs(name_).uplinks;
}

int DVSwitchImpl::GetNumPorts() {
  CheckFault("DVSwitchImpl::GetNumPorts");
  return ReadDvs(name_).configured_ports + kReservedPorts;
}

std::vector<std::string> DVSwitchImpl::GetConnectedUplinks() {
  CheckFault("DVSwitchImpl::GetConnectedUplinks");
  HostModel const& host = Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime);
  std::vector<std::string> connected;
  for (auto const& uplink : ReadDvs(host, name_).uplinks) {
    if (Sim::FindPnic(host.nic, uplink)) connected.push_back(uplink);
  }
  return connected;
}

int DVSwitchImpl::GetNumUsedPorts() {
  CheckFault("DVSwitchImpl::GetNumUsedPorts");
  HostModel const& host = Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime);
  ReadDvs(host, name_);
  // One port for the switch itself, one per port with a client.
  int used = 1;
  for (auto const& port : host.runtime.ports) {
    if (port.portset == name_) ++used;
  }
  return used;
}

std::string DVSwitchImpl::GetClass() {
  CheckFault("DVSwitchImpl::GetClass");
  ReadDvs(name_);
  return "tamarisk-dvs";
}

std::vector<std::unique_ptr<HostCtl::Network::Port>> DVSwitchImpl::GetPorts() {
  CheckFault("DVSwitchImpl::GetPorts");
  HostModel const& host = Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime);
  ReadDvs(host, name_);
  std::vector<std::unique_ptr<HostCtl::Network::Port>> ports;
  for (auto const& port : host.runtime.ports) {
    if (port.portset == name_) ports.push_back(std::make_unique<PortImpl>(port.id));
  }
  return ports;
}

std::string DVSwitchImpl::GetDvsName() {
  CheckFault("DVSwitchImpl::GetDvsName");
  return ReadDvs(name_).name;
}

std::string DVSwitchImpl::GetDvsId() {
  CheckFault("DVSwitchImpl::GetDvsId");
  return ReadDvs(name_).id;
}

std::string DVSwitchImpl::GetCdpStatusString() {
  CheckFault("DVSwitchImpl::GetCdpStatusString");
  int status = ReadDvs(name_).cdp_status;
  return status >= 0 && status <= 3 ? kCdpWords[status] : "unknown";
}

int DVSwitchImpl::GetNumConfiguredPorts() {
  CheckFault("DVSwitchImpl::GetNumConfiguredPorts");
  return static_cast<int>(ReadDvs(name_).ports.size());
}

int DVSwitchImpl::GetMTU() {
  CheckFault("DVSwitchImpl::GetMTU");
  return ReadDvs(name_).mtu;
}

int DVSwitchImpl::GetBeaconTimeout() {
  CheckFault("DVSwitchImpl::GetBeaconTimeout");
  return ReadDvs(name_).beacon_timeout;
}

bool DVSwitchImpl::IsCorvaneBranded() {
  CheckFault("DVSwitchImpl::IsCorvaneBranded");
  return ReadDvs(name_).corvane_branded;
}

std::vector<std::unique_ptr<HostCtl::Network::DVPort>> DVSwitchImpl::GetDVPorts() {
  CheckFault("DVSwitchImpl::GetDVPorts");
  auto const& dvs = ReadDvs(name_);
  std::vector<Sim::DVPortState const*> sorted;
  for (auto const& port : dvs.ports) sorted.push_back(&port);
  // Ids are numbers: "2" before "10".
  std::stable_sort(sorted.begin(), sorted.end(), [](auto const* a, auto const* b) {
    return a->id.size() != b->id.size() ? a->id.size() < b->id.size() : a->id < b->id;
  });
  std::vector<std::unique_ptr<HostCtl::Network::DVPort>> ports;
  for (auto const* port : sorted) ports.push_back(std::make_unique<DVPortImpl>(port->id, dvs.id));
  return ports;
}

// ---- DVPortImpl ----

DVPortImpl::DVPortImpl(HostCtl::Network::DVPortParam const& param)
    : portId(param.portId), switchId_(param.switchUuid), connectionId_(param.connectionId) {}

DVPortImpl::DVPortImpl(std::string const& portId, std::string const& switchId)
    : portId(portId), switchId_(switchId) {}

DVPortImpl::~DVPortImpl() = default;

void DVPortImpl::Refresh() {
  CheckFault("DVPortImpl::Refresh");
  ReadDVPort(Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime), switchId_, portId);
}

bool DVPortImpl::IsInUse(std::vector<std::string>& clients) {
  CheckFault("DVPortImpl::IsInUse");
  HostModel const& host = Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime);
  auto [dvs, port] = ReadDVPort(host, switchId_, portId);
  bool inUse = false;
  for (auto const& switchPort : host.runtime.ports) {
    if (switchPort.portset == dvs->name && switchPort.dvport_id == port->id) {
      clients.push_back(switchPort.client);
      inUse = true;
    }
  }
  for (auto const& nic : host.ip.interfaces) {
    if (nic.connection_type == 2 && nic.dvs_uuid == switchId_ && nic.dvport_id == portId &&
        std::find(clients.begin(), clients.end(), nic.name) == clients.end()) {
      clients.push_back(nic.name);
      inUse = true;
    }
  }
  return inUse;
}

std::string DVPortImpl::GetDVPortgroupId() const {
  CheckFault("DVPortImpl::GetDVPortgroupId");
  return ReadDVPort(Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime), switchId_, portId).second->portgroup_id;
}

uint32_t DVPortImpl::GetConnectionId() {
  CheckFault("DVPortImpl::GetConnectionId");
  return ReadDVPort(Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime), switchId_, portId).second->connection_id;
}

void DVPortImpl::SetConnectionId(uint32_t connectionId) {
  CheckFault("DVPortImpl::SetConnectionId");
  Sim::ChangeHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime, [&](HostModel& host) {
    ReadDVPort(host, switchId_, portId);
    for (auto& dvs : host.vswitch.distributed_switches) {
      if (dvs.id != switchId_) continue;
      for (auto& port : dvs.ports) {
        if (port.id == portId) port.connection_id = connectionId;
      }
    }
  });
  connectionId_ = connectionId;
}

HostCtl::Network::ConnectionPoint::ConnectionType DVPortImpl::GetConnectionType() const {
  return DVPortConnection;
}

std::string DVPortImpl::GetPortGroupName() const { return std::string(); }

HostCtl::Network::DVPortParam DVPortImpl::GetDVPortParam() const {
  return {switchId_, portId, connectionId_};
}

std::string DVPortImpl::GetPortsetName() {
  CheckFault("DVPortImpl::GetPortsetName");
  auto const* dvs = FindDvsById(Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime), switchId_);
  if (!dvs) throw HostCtlException("Distributed switch with id " + switchId_ + " not found");
  return dvs->name;
}

bool DVPortImpl::IsValid() {
  CheckFault("DVPortImpl::IsValid");
  auto const* dvs = FindDvsById(Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime), switchId_);
  return dvs && FindDVPort(*dvs, portId);
}

// ---- VirtualSwitchInfoImpl: distributed switches ----

std::vector<std::unique_ptr<HostCtl::Network::DVSwitch>> VirtualSwitchInfoImpl::GetDVSwitches() {
  CheckFault("VirtualSwitchInfoImpl::GetDVSwitches");
  std::vector<std::unique_ptr<HostCtl::Network::DVSwitch>> switches;
  for (auto const& dvs : Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime).vswitch.distributed_switches) {
    switches.push_back(std::make_unique<DVSwitchImpl>(dvs.name));
  }
  return switches;
}

std::unique_ptr<HostCtl::Network::DVSwitch> VirtualSwitchInfoImpl::GetDVSwitchByName(
    std::string const& name) {
  CheckFault("VirtualSwitchInfoImpl::GetDVSwitchByName");
  if (!Sim::FindDistributedSwitch(Sim::ReadHost(Sim::kAreaVswitch | Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaRuntime).vswitch, name)) return nullptr;
  return std::make_unique<DVSwitchImpl>(name);
}

}  // namespace OrvkCtl::Network
