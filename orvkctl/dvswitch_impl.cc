// Distributed switches of the simulated host and their DVPorts. Whether a
// DVPort is in use is told by the switch ports of the runtime area.
#include <algorithm>
#include <cstring>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/dvswitch.h"
#include "hostctl/network_info.h"
#include "hostctl/port.h"
#include "hostctl/virtual_switch.h"

namespace HostCtl::Network {
DVSwitch::~DVSwitch() = default;
DVPort::~DVPort() = default;

std::unique_ptr<DVSwitch> NetworkFactory::GetDVSwitchByName(std::string const& name) {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::NetworkFactory_GetDVSwitchByName);
  if (!OrvkCtl::Sim::FindDistributedSwitch(
          OrvkCtl::Sim::ReadHost(OrvkCtl::Sim::kAreaNic | OrvkCtl::Sim::kAreaIp |
                                 OrvkCtl::Sim::kAreaVswitch | OrvkCtl::Sim::kAreaRuntime)
              .vswitch,
          name)) {
    throw Lib::HostCtlException("Distributed switch " + name + " not found");
  }
  return std::make_unique<OrvkCtl::Network::DVSwitchImpl>(name);
}

std::unique_ptr<DVPort> NetworkFactory::GetDVPort(DVPortParam const& param) {
  OrvkCtl::Sim::CheckFault(OrvkCtl::Sim::Operation::NetworkFactory_GetDVPort);
  auto port = std::make_unique<OrvkCtl::Network::DVPortImpl>(param);
  port->Refresh();
  return port;
}

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using Sim::CheckFault;
using Sim::Operation;
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
  return ReadDvs(
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime), name);
}

DistributedSwitchState const* FindDvsById(HostModel const& host, std::string const& id) {
  for (auto const& dvs : host.vswitch.distributed_switches) {
    if (dvs.id == id) return &dvs;
  }
  return nullptr;
}

// A DVPort of the switch, facing VMs or an uplink.
Sim::DVPortState const* FindDVPort(DistributedSwitchState const& dvs, std::string const& id) {
  for (auto const& port : dvs.ports) {
    if (port.id == id) return &port;
  }
  for (auto const& port : dvs.uplink_ports) {
    if (port.id == id) return &port;
  }
  return nullptr;
}

// Ids are numbers: "2" before "10".
bool PortIdLess(std::string const& a, std::string const& b) {
  return a.size() != b.size() ? a.size() < b.size() : a < b;
}

// Copies `text` into a NUL-terminated field of a packed record, cut to fit.
template <size_t N>
void CopyText(char (&field)[N], std::string const& text) {
  std::memset(field, 0, N);
  std::memcpy(field, text.data(), std::min(text.size(), N - 1));
}

// The legend letters of an actor: slow or fast LACPDUs, active or passive.
std::string ActorFlags(uint8_t state) {
  return std::string(state & 0x02 ? "F" : "S") + (state & 0x01 ? "A" : "P");
}

std::unique_ptr<HostCtl::Network::LacpPortRecord> MakeRecord(Sim::LacpMemberState const& member) {
  auto record = std::make_unique<HostCtl::Network::LacpPortRecord>();
  std::memset(record.get(), 0, sizeof(*record));
  CopyText(record->nicName, member.nic);
  CopyText(record->state, member.state);
  record->localPortNumber = member.port_number;
  record->localPortPriority = member.port_priority;
  record->localAdminKey = member.admin_key;
  record->localOperKey = member.oper_key;
  record->localPortState = member.port_state;
  CopyText(record->localFlags, ActorFlags(member.port_state));
  record->partnerAge = member.partner_age;
  record->partnerPortNumber = member.partner_port_number;
  record->partnerPortPriority = member.partner_port_priority;
  record->partnerOperKey = member.partner_oper_key;
  record->partnerPortState = member.partner_port_state;
  CopyText(record->partnerDeviceId, member.partner_device_id);
  CopyText(record->partnerFlags, member.partner_flags);
  record->rxLacpdus = member.rx_lacpdus;
  record->txLacpdus = member.tx_lacpdus;
  record->rxErrors = member.rx_errors;
  record->txErrors = member.tx_errors;
  return record;
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

DVSwitchImpl::DVSwitchImpl(std::string const& name) : PortsetImpl(name) {}
DVSwitchImpl::~DVSwitchImpl() = default;

void DVSwitchImpl::Refresh() {
  CheckFault(Operation::DVSwitchImpl_Refresh);
  ReadDvs(name_);
}

std::string DVSwitchImpl::GetName() {
  CheckFault(Operation::DVSwitchImpl_GetName);
  EnsureFresh();
  return name_;
}

std::vector<std::string> DVSwitchImpl::GetUplinks() {
  CheckFault(Operation::DVSwitchImpl_GetUplinks);
  return ReadDvs(name_).uplinks;
}

int DVSwitchImpl::GetNumPorts() {
  CheckFault(Operation::DVSwitchImpl_GetNumPorts);
  return ReadDvs(name_).configured_ports + kReservedPorts;
}

std::vector<std::string> DVSwitchImpl::GetConnectedUplinks() {
  CheckFault(Operation::DVSwitchImpl_GetConnectedUplinks);
  HostModel const& host =
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  std::vector<std::string> connected;
  for (auto const& uplink : ReadDvs(host, name_).uplinks) {
    if (Sim::FindPnic(host.nic, uplink)) connected.push_back(uplink);
  }
  return connected;
}

int DVSwitchImpl::GetNumUsedPorts() {
  CheckFault(Operation::DVSwitchImpl_GetNumUsedPorts);
  HostModel const& host =
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  ReadDvs(host, name_);
  // One port for the switch itself, one per port with a client.
  int used = 1;
  for (auto const& port : host.runtime.ports) {
    if (port.portset == name_) ++used;
  }
  return used;
}

std::string DVSwitchImpl::GetClass() {
  CheckFault(Operation::DVSwitchImpl_GetClass);
  ReadDvs(name_);
  return "tamarisk-dvs";
}

std::vector<std::unique_ptr<HostCtl::Network::Port>> DVSwitchImpl::GetPorts() {
  CheckFault(Operation::DVSwitchImpl_GetPorts);
  HostModel const& host =
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  ReadDvs(host, name_);
  std::vector<std::unique_ptr<HostCtl::Network::Port>> ports;
  for (auto const& port : host.runtime.ports) {
    if (port.portset == name_) ports.push_back(std::make_unique<PortImpl>(port.id));
  }
  return ports;
}

std::string DVSwitchImpl::GetDvsName() {
  CheckFault(Operation::DVSwitchImpl_GetDvsName);
  return ReadDvs(name_).name;
}

std::string DVSwitchImpl::GetDvsId() {
  CheckFault(Operation::DVSwitchImpl_GetDvsId);
  return ReadDvs(name_).id;
}

std::string DVSwitchImpl::GetDvsIdentifier() {
  CheckFault(Operation::DVSwitchImpl_GetDvsIdentifier);
  return ReadDvs(name_).id;
}

void DVSwitchImpl::GetPortIds(std::vector<std::string>& keys, std::vector<std::string>& ids) {
  CheckFault(Operation::DVSwitchImpl_GetPortIds);
  auto const& dvs = ReadDvs(name_);
  std::vector<std::string> all;
  for (auto const& port : dvs.ports) all.push_back(port.id);
  for (auto const& port : dvs.uplink_ports) all.push_back(port.id);
  std::stable_sort(all.begin(), all.end(), PortIdLess);
  for (auto const& id : all) {
    keys.push_back(dvs.id + "/" + id);
    ids.push_back(id);
  }
}

std::unique_ptr<HostCtl::Network::DVPort> DVSwitchImpl::GetPort(std::string const& id) {
  CheckFault(Operation::DVSwitchImpl_GetPort);
  auto const& dvs = ReadDvs(name_);
  if (!FindDVPort(dvs, id)) return nullptr;
  return std::make_unique<DVPortImpl>(id, dvs.id);
}

std::vector<HostCtl::Network::LacpGroup> DVSwitchImpl::GetLacpGroups() {
  CheckFault(Operation::DVSwitchImpl_GetLacpGroups);
  std::vector<HostCtl::Network::LacpGroup> groups;
  for (auto const& lag : ReadDvs(name_).lags) {
    if (!lag.running) continue;
    HostCtl::Network::LacpGroup group;
    group.lagId = lag.id;
    group.mode = lag.mode;
    for (auto const& member : lag.members) {
      group.key = member.oper_key;
      group.ports.push_back(MakeRecord(member));
    }
    groups.push_back(std::move(group));
  }
  return groups;
}

void DVSwitchImpl::SetLacpTimeout(unsigned lagId, bool shortTimeout, std::string const& nic) {
  CheckFault(Operation::DVSwitchImpl_SetLacpTimeout);
  Sim::ChangeHost(
      Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime, [&](HostModel& host) {
        auto* dvs = Sim::FindDistributedSwitch(host.vswitch, name_);
        if (!dvs) throw HostCtlException("Distributed switch " + name_ + " not found");
        auto lag = std::find_if(dvs->lags.begin(), dvs->lags.end(),
                                [&](auto const& l) { return l.id == lagId && l.running; });
        if (lag == dvs->lags.end()) {
          throw HostCtlException("No running LAG with ID " + std::to_string(lagId) + " on " +
                                 name_);
        }
        bool found = nic.empty();
        for (auto& member : lag->members) {
          if (!nic.empty() && member.nic != nic) continue;
          found = true;
          member.port_state =
              shortTimeout ? (member.port_state | 0x02) : (member.port_state & ~0x02);
        }
        if (!found) {
          throw HostCtlException("Uplink " + nic + " is not in LAG " + std::to_string(lagId));
        }
      });
}

std::vector<HostCtl::Network::LagConfig> DVSwitchImpl::GetLagConfigs() {
  CheckFault(Operation::DVSwitchImpl_GetLagConfigs);
  std::vector<HostCtl::Network::LagConfig> configs;
  for (auto const& lag : ReadDvs(name_).lags) {
    HostCtl::Network::LagConfig config;
    config.lagId = std::to_string(lag.id);
    config.lagName = lag.name;
    config.mode = lag.mode;
    config.loadBalance = lag.load_balance;
    config.shortTimeout = !lag.members.empty() &&
                          std::all_of(lag.members.begin(), lag.members.end(),
                                      [](auto const& m) { return (m.port_state & 0x02) != 0; });
    config.uplinkCount = lag.uplink_count;
    configs.push_back(config);
  }
  return configs;
}

std::map<std::string, HostCtl::Network::DVPortParam> DVSwitchImpl::GetUplinkPorts() {
  CheckFault(Operation::DVSwitchImpl_GetUplinkPorts);
  auto const& dvs = ReadDvs(name_);
  std::map<std::string, HostCtl::Network::DVPortParam> uplinks;
  for (auto const& port : dvs.uplink_ports) {
    if (!port.uplink.empty()) uplinks[port.uplink] = {dvs.id, port.id, port.connection_id};
  }
  return uplinks;
}

std::string DVSwitchImpl::GetCdpStatusString() {
  CheckFault(Operation::DVSwitchImpl_GetCdpStatusString);
  int status = ReadDvs(name_).cdp_status;
  return status >= 0 && status <= 3 ? kCdpWords[status] : "unknown";
}

int DVSwitchImpl::GetNumConfiguredPorts() {
  CheckFault(Operation::DVSwitchImpl_GetNumConfiguredPorts);
  return static_cast<int>(ReadDvs(name_).ports.size());
}

int DVSwitchImpl::GetMTU() {
  CheckFault(Operation::DVSwitchImpl_GetMTU);
  return ReadDvs(name_).mtu;
}

int DVSwitchImpl::GetBeaconTimeout() {
  CheckFault(Operation::DVSwitchImpl_GetBeaconTimeout);
  return ReadDvs(name_).beacon_timeout;
}

bool DVSwitchImpl::IsCorvaneBranded() {
  CheckFault(Operation::DVSwitchImpl_IsCorvaneBranded);
  return ReadDvs(name_).corvane_branded;
}

std::vector<std::unique_ptr<HostCtl::Network::DVPort>> DVSwitchImpl::GetDVPorts() {
  CheckFault(Operation::DVSwitchImpl_GetDVPorts);
  auto const& dvs = ReadDvs(name_);
  std::vector<Sim::DVPortState const*> sorted;
  for (auto const& port : dvs.ports) sorted.push_back(&port);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](auto const* a, auto const* b) { return PortIdLess(a->id, b->id); });
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
  CheckFault(Operation::DVPortImpl_Refresh);
  ReadDVPort(Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime),
             switchId_, portId);
}

bool DVPortImpl::IsInUse(std::vector<std::string>& clients) {
  CheckFault(Operation::DVPortImpl_IsInUse);
  HostModel const& host =
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
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

std::string DVPortImpl::GetPortName() {
  CheckFault(Operation::DVPortImpl_GetPortName);
  return ReadDVPort(
             Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime),
             switchId_, portId)
      .second->name;
}

std::pair<bool, int> DVPortImpl::GetLacpPortConfig() {
  CheckFault(Operation::DVPortImpl_GetLacpPortConfig);
  auto const* port = ReadDVPort(Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch |
                                              Sim::kAreaRuntime),
                                switchId_, portId)
                         .second;
  return {port->lacp_enabled, port->lacp_mode};
}

std::string DVPortImpl::GetDVPortgroupId() const {
  CheckFault(Operation::DVPortImpl_GetDVPortgroupId);
  return ReadDVPort(
             Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime),
             switchId_, portId)
      .second->portgroup_id;
}

uint32_t DVPortImpl::GetConnectionId() {
  CheckFault(Operation::DVPortImpl_GetConnectionId);
  return ReadDVPort(
             Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime),
             switchId_, portId)
      .second->connection_id;
}

void DVPortImpl::SetConnectionId(uint32_t connectionId) {
  CheckFault(Operation::DVPortImpl_SetConnectionId);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime,
                  [&](HostModel& host) {
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
  CheckFault(Operation::DVPortImpl_GetPortsetName);
  auto const* dvs = FindDvsById(
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime),
      switchId_);
  if (!dvs) throw HostCtlException("Distributed switch with id " + switchId_ + " not found");
  return dvs->name;
}

bool DVPortImpl::IsValid() {
  CheckFault(Operation::DVPortImpl_IsValid);
  auto const* dvs = FindDvsById(
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime),
      switchId_);
  return dvs && FindDVPort(*dvs, portId);
}

// ---- VirtualSwitchInfoImpl: distributed switches ----

std::vector<std::unique_ptr<HostCtl::Network::DVSwitch>> VirtualSwitchInfoImpl::GetDVSwitches() {
  CheckFault(Operation::VirtualSwitchInfoImpl_GetDVSwitches);
  std::vector<std::unique_ptr<HostCtl::Network::DVSwitch>> switches;
  for (auto const& dvs :
       Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime)
           .vswitch.distributed_switches) {
    switches.push_back(std::make_unique<DVSwitchImpl>(dvs.name));
  }
  return switches;
}

std::unique_ptr<HostCtl::Network::DVSwitch> VirtualSwitchInfoImpl::GetDVSwitchByName(
    std::string const& name) {
  CheckFault(Operation::VirtualSwitchInfoImpl_GetDVSwitchByName);
  if (!Sim::FindDistributedSwitch(
          Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime)
              .vswitch,
          name))
    return nullptr;
  return std::make_unique<DVSwitchImpl>(name);
}

std::vector<std::unique_ptr<HostCtl::Network::DVSwitch>>
VirtualSwitchInfoImpl::GetOpaqueDVSwitches() {
  CheckFault(Operation::VirtualSwitchInfoImpl_GetOpaqueDVSwitches);
  Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  return {};
}

bool VirtualSwitchInfoImpl::IsLegacySwitch(std::string const& name) {
  CheckFault(Operation::VirtualSwitchInfoImpl_IsLegacySwitch);
  return Sim::FindStandardSwitch(
             Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime)
                 .vswitch,
             name) != nullptr;
}

bool VirtualSwitchInfoImpl::IsDVSwitch(std::string const& name) {
  CheckFault(Operation::VirtualSwitchInfoImpl_IsDVSwitch);
  return Sim::FindDistributedSwitch(
             Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime)
                 .vswitch,
             name) != nullptr;
}

bool VirtualSwitchInfoImpl::IsOpaqueSwitch(std::string const& name) {
  CheckFault(Operation::VirtualSwitchInfoImpl_IsOpaqueSwitch);
  Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  static_cast<void>(name);
  return false;
}

}  // namespace OrvkCtl::Network
