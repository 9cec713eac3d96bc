// Orvik network interfaces of the simulated host.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <regex>

#include "fault.h"
#include "host_backend.h"
#include "host_rules.h"
#include "hostctl/orvk_nic.h"
#include "hostctl/port_group_impl.h"

namespace HostCtl::Network {
OrvkNicPort::~OrvkNicPort() = default;
}  // namespace HostCtl::Network

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::ConnectionPoint;
using HostCtl::Network::DVPortParam;
using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv4Network;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;
using HostCtl::Network::MacAddress;
using HostCtl::Network::OpaqueNetworkParam;
using HostCtl::Network::OrvkNic;
using HostCtl::Network::OrvkNicTagType;
using Sim::CheckFault;
using Sim::Operation;
using Sim::HostModel;
using Sim::InterfaceState;
using Sim::IpConfigState;

const std::string kStatic = "static";
const std::string kDhcp = "dhcp";
const std::string kNone = "none";
const std::string kNoIpv4 = "0.0.0.0";
const std::string kNoIpv6 = "::";
constexpr uint32_t kDefaultMtu = 1500;
constexpr uint32_t kMaxRxQueues = 1000;
constexpr uint32_t kFirstPortId = 33554436;

HostCtlException NotFound(std::string const& name) {
  return HostCtlException("Orvik network interface " + name + " not found");
}

InterfaceState const& ReadNic(HostModel const& host, std::string const& name) {
  auto const* nic = Sim::FindInterface(host.ip, name);
  if (!nic) throw NotFound(name);
  return *nic;
}

// An interface's own record is all in the IP area: reading it loads no
// other (on a real host, no NIC's device data and no socket table).
InterfaceState const& ReadNic(std::string const& name) {
  return ReadNic(Sim::ReadHost(Sim::kAreaIp), name);
}

void ChangeNic(std::string const& name,
               std::function<void(HostModel&, InterfaceState&)> const& change) {
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime,
                  [&](HostModel& host) {
                    auto* nic = Sim::FindInterface(host.ip, name);
                    if (!nic) throw NotFound(name);
                    change(host, *nic);
                  });
}

IpConfig ToConfig(IpConfigState const& state) {
  IpConfig config;
  if (state.ipv4_mode != kNone) {
    config.SetIpv4Address(Ipv4Address(state.ipv4_address));
    config.SetIpv4Netmask(Ipv4Address(state.ipv4_netmask));
  }
  config.SetIpv4Gateway(Ipv4Address(state.ipv4_gateway));
  if (state.ipv4_mode == kDhcp) config.SetUseDhcp(true);
  if (state.ipv4_mode == kNone) config.SetIpv4UseNone();
  config.SetDhcpDns(state.dhcp_dns);
  config.SetUseIpv6(state.ipv6_enabled);
  config.SetUseIpv6Dhcp(state.ipv6_dhcp);
  config.SetUseIpv6RouterAdvertised(state.ipv6_router_adv);
  config.SetIpv6DhcpDns(state.ipv6_dhcp_dns);
  config.SetIpv6Gateway(Ipv6Address(state.ipv6_gateway));
  for (auto const& address : state.ipv6_addresses) {
    Ipv6Network network(address.address);
    network.SetIpv6AddressType(static_cast<Ipv6Network::Ipv6AddressType>(address.type));
    network.SetIpv6AddressStatus(static_cast<Ipv6Network::Ipv6AddressStatus>(address.status));
    config.AddIpv6Network(network);
  }
  return config;
}

IpConfigState ToState(IpConfig const& config) {
  IpConfigState state;
  state.ipv4_mode = config.GetUseDhcp() ? kDhcp : config.GetIpv4UseNone() ? kNone : kStatic;
  state.ipv4_address = config.GetIpv4Address().GetStringAddress();
  state.ipv4_netmask = config.GetIpv4Netmask().GetStringAddress();
  state.ipv4_gateway = config.GetIpv4Gateway().GetStringAddress();
  state.dhcp_dns = config.GetDhcpDns();
  state.ipv6_enabled = config.GetUseIpv6();
  state.ipv6_dhcp = config.GetUseIpv6Dhcp();
  state.ipv6_router_adv = config.GetUseIpv6RouterAdvertised();
  state.ipv6_dhcp_dns = config.GetIpv6DhcpDns();
  state.ipv6_gateway = config.GetIpv6Gateway().GetStringAddress();
  for (auto const& network : config.GetIpv6Network()) {
    state.ipv6_addresses.push_back({network.GetStringAddress(),
                                    static_cast<uint32_t>(network.GetIpv6AddressType()),
                                    static_cast<uint32_t>(network.GetIpv6AddressStatus())});
  }
  return state;
}

// Refuses what no host accepts as the IPv4 part of an interface's
// configuration.
void CheckIpv4(HostModel const& host, InterfaceState const& nic, IpConfig const& config) {
  if (config.GetUseDhcp() || config.GetIpv4UseNone()) return;
  Ipv4Address const address = config.GetIpv4Address();
  Ipv4Address const netmask = config.GetIpv4Netmask();
  if (address == Ipv4Address()) {
    throw HostCtlException("Invalid IPv4 address 0.0.0.0 for " + nic.name +
                           ": a static address is required");
  }
  uint32_t const mask = netmask.GetValue();
  if (mask == 0 || (~mask & (~mask + 1)) != 0) {
    throw HostCtlException("Invalid IPv4 netmask " + netmask.GetStringAddress() + " for " +
                           nic.name);
  }
  Ipv4Address const gateway = config.GetIpv4Gateway();
  if (!(gateway == Ipv4Address()) && (gateway.GetValue() & mask) != (address.GetValue() & mask)) {
    throw HostCtlException("Gateway " + gateway.GetStringAddress() + " is not in the network of " +
                           nic.name + " (" + address.GetStringAddress() + "/" +
                           netmask.GetStringAddress() + ")");
  }
  std::string const text = address.GetStringAddress();
  for (auto const& other : host.ip.interfaces) {
    if (other.name != nic.name && other.netstack == nic.netstack && other.ip.ipv4_mode != kNone &&
        other.ip.ipv4_address == text) {
      throw HostCtlException("IPv4 address " + text + " is already in use by " + other.name);
    }
  }
}

template <class Row>
void ReplaceOnLink(std::vector<Row>& table, std::string const& name, std::string const& onLink,
                   std::vector<Row> const& rows) {
  auto position = table.end();
  for (auto it = table.begin(); it != table.end();) {
    if (it->interface == name && it->gateway == onLink) {
      it = table.erase(it);
      position = it;
    } else {
      ++it;
    }
  }
  size_t const index = position - table.begin();
  table.insert(table.begin() + std::min(index, table.size()), rows.begin(), rows.end());
}

// Keeps the routes to the interface's own networks in step with its addresses.
void SyncOnLinkRoutes(HostModel& host, InterfaceState const& nic) {
  auto* routes = Sim::FindNetstackRoutes(host.ip, nic.netstack);
  if (!routes) return;
  std::vector<Sim::RouteState> ipv4;
  if (nic.ip.ipv4_mode != kNone && nic.ip.ipv4_address != kNoIpv4) {
    Ipv4Address netmask(nic.ip.ipv4_netmask);
    unsigned prefix = 0;
    for (uint32_t mask = netmask.GetValue(); mask & 0x80000000u; mask <<= 1) ++prefix;
    Ipv4Network network(Ipv4Address(nic.ip.ipv4_address), prefix);
    ipv4.push_back({Ipv4Network(network.GetNetwork(), prefix).GetStringAddress(), kNoIpv4, nic.name,
                    nic.ip.ipv4_mode == kDhcp ? "DHCP" : "MANUAL"});
  }
  ReplaceOnLink(routes->ipv4, nic.name, kNoIpv4, ipv4);
  std::vector<Sim::RouteState> ipv6;
  if (nic.ip.ipv6_enabled) {
    for (auto const& address : nic.ip.ipv6_addresses) {
      Ipv6Network given(address.address);
      std::string text = Ipv6Network(given.GetNetwork(), given.GetNetmask()).GetStringAddress();
      bool const known = std::any_of(ipv6.begin(), ipv6.end(), [&](Sim::RouteState const& row) {
        return row.network == text;
      });
      if (!known) ipv6.push_back({text, kNoIpv6, nic.name, "MANUAL"});
    }
  }
  ReplaceOnLink(routes->ipv6, nic.name, kNoIpv6, ipv6);
}

// A port group gains or loses a client.
void CountClient(HostModel& host, InterfaceState const& nic, int delta) {
  if (nic.connection_type != ConnectionPoint::PortGroupConnection) return;
  auto* group = Sim::FindPortGroup(host.vswitch, nic.portgroup);
  if (group) group->active_clients = std::max(0, group->active_clients + delta);
}

bool NetstackExists(HostModel const& host, std::string const& key) {
  return Sim::FindNetstack(host.ip, key) != nullptr;
}

Sim::PortState const* PortOf(HostModel const& host, std::string const& name) {
  for (auto const& port : host.runtime.ports) {
    if (port.type == Sim::kPortTypeInterface && port.client == name) return &port;
  }
  return nullptr;
}

// A new switch port for `nic`, numbered after the last port of its switch.
void OpenPort(HostModel& host, InterfaceState const& nic) {
  Sim::PortState port;
  uint32_t last = 0;
  for (auto const& other : host.runtime.ports) {
    if (other.portset == nic.portset) last = std::max(last, other.id);
  }
  if (last == 0) {
    for (auto const& other : host.runtime.ports) last = std::max(last, other.id | 0xffffffu);
    last = last == 0 ? kFirstPortId - 1 : last + 1;
  }
  port.id = last + 1;
  port.portset = nic.portset;
  port.type = Sim::kPortTypeInterface;
  port.client = nic.name;
  port.portgroup = nic.portgroup;
  port.dvport_id = nic.dvport_id;
  port.mac_address = nic.mac;
  host.runtime.ports.push_back(port);
}

// Refuses a DVPort that a VM or another interface already uses.
void CheckDVPortFree(HostModel const& host, InterfaceState const& nic) {
  if (nic.connection_type != ConnectionPoint::DVPortConnection) return;
  for (auto const& port : host.runtime.ports) {
    if (port.portset == nic.portset && port.dvport_id == nic.dvport_id) {
      throw HostCtlException("DVPort " + nic.dvport_id + " of " + nic.portset +
                             " is already in use by " + port.client);
    }
  }
}

// A connection point as the interface's record tells it, for the kinds that
// have no object of their own here.
class StoredConnectionPoint : public virtual ConnectionPoint {
 public:
  explicit StoredConnectionPoint(InterfaceState const& nic)
      : type_(static_cast<ConnectionType>(nic.connection_type)),
        dvport_{nic.dvs_uuid, nic.dvport_id, nic.connection_id},
        opaque_{nic.opaque_network_id, nic.opaque_network_type, nic.external_id},
        portset_(nic.portset) {}

  ConnectionType GetConnectionType() const override { return type_; }
  std::string GetPortGroupName() const override { return {}; }
  DVPortParam GetDVPortParam() const override { return dvport_; }
  OpaqueNetworkParam const& GetOpaqueNetworkParam() const override { return opaque_; }
  std::string GetPortsetName() override { return portset_; }
  bool IsValid() override { return true; }

 private:
  ConnectionType type_;
  DVPortParam dvport_;
  OpaqueNetworkParam opaque_;
  std::string portset_;
};

class PortOfNic : public virtual HostCtl::Network::OrvkNicPort {
 public:
  explicit PortOfNic(uint32_t id) : id_(id) {}
  uint32_t GetPortId() override {
    CheckFault(Operation::OrvkNicPort_GetPortId);
    return id_;
  }

 private:
  uint32_t id_;
};

bool SameConnection(InterfaceState const& a, InterfaceState const& b) {
  if (a.connection_type != b.connection_type) return false;
  switch (a.connection_type) {
    case ConnectionPoint::PortGroupConnection:
      return a.portgroup == b.portgroup;
    case ConnectionPoint::DVPortConnection:
      return a.dvs_uuid == b.dvs_uuid && a.dvport_id == b.dvport_id;
    default:
      return a.opaque_network_id == b.opaque_network_id;
  }
}

// The record's connection fields, from `point`.
InterfaceState Attach(ConnectionPoint* point) {
  if (!point) throw HostCtlException("No connection point given for the Orvik network interface");
  if (!point->IsValid()) throw HostCtlException("The connection point does not exist");
  InterfaceState nic;
  nic.connection_type = point->GetConnectionType();
  switch (nic.connection_type) {
    case ConnectionPoint::PortGroupConnection:
      nic.portgroup = point->GetPortGroupName();
      break;
    case ConnectionPoint::DVPortConnection: {
      auto param = point->GetDVPortParam();
      nic.dvs_uuid = param.switchUuid;
      nic.dvport_id = param.portId;
      nic.connection_id = param.connectionId;
      break;
    }
    case ConnectionPoint::OpaqueNetworkConnection: {
      auto const& param = point->GetOpaqueNetworkParam();
      nic.opaque_network_id = param.networkId;
      nic.opaque_network_type = param.networkType;
      nic.external_id = param.externalId;
      break;
    }
    default:
      throw HostCtlException("Unknown connection point type " +
                             std::to_string(nic.connection_type));
  }
  nic.portset = point->GetPortsetName();
  return nic;
}

std::string Describe(InterfaceState const& point) {
  switch (point.connection_type) {
    case ConnectionPoint::PortGroupConnection:
      return "port group " + point.portgroup;
    case ConnectionPoint::DVPortConnection:
      return "DVPort " + point.dvport_id + " of switch " + point.dvs_uuid;
    default:
      return "opaque network " + point.opaque_network_id;
  }
}

std::string FreeName(HostModel const& host) {
  for (int n = 0; n <= 255; ++n) {
    std::string name = "orvk" + std::to_string(n);
    if (!Sim::FindInterface(host.ip, name)) return name;
  }
  throw HostCtlException("No free Orvik network interface name: orvk0 to orvk255 are all in use");
}

// The NIC, interface or physical, that owns the MAC address `mac` (canonical
// text); empty when none does. A physical NIC owns its burnt-in address and
// its virtual one. MAC addresses are unique across every NIC of the host.
std::string MacOwner(HostModel const& host, std::string const& mac) {
  for (auto const& nic : host.ip.interfaces) {
    if (nic.mac == mac) return nic.name;
  }
  for (auto const& pnic : host.nic.pnics) {
    if (pnic.mac == mac || pnic.virtual_address == mac) return pnic.name;
  }
  return "";
}

std::string FreeMac(HostModel const& host) {
  for (int n = 1; n < 256; ++n) {
    char text[18];
    std::snprintf(text, sizeof text, "d2:6e:a0:00:10:%02x", n);
    if (MacOwner(host, text).empty()) return text;
  }
  throw HostCtlException("No free MAC address for a new Orvik network interface");
}

void CheckMtu(std::string const& name, uint32_t mtu) {
  if (mtu < static_cast<uint32_t>(OrvkNic::MIN_MTU) ||
      mtu > static_cast<uint32_t>(OrvkNic::MAX_MTU)) {
    throw HostCtlException("Invalid MTU " + std::to_string(mtu) + " for " + name +
                           ": it must be between " + std::to_string(OrvkNic::MIN_MTU) + " and " +
                           std::to_string(OrvkNic::MAX_MTU));
  }
}

// The services an interface can be tagged for, by tag value 1..13. Tags 2, 3
// and 6 belong to services with netstack instances of their own.
char const* const kTagNames[] = {
    "Management",      "Livehop",
    "FaultTolerance",  "StorageReplication",
    "ReplicationBulk", "TamariskProvisioning",
    "ObjectStorage",   "ObjectStorageWitness",
    "NetworkStorage",  "ClusterHeartbeat",
    "BackupTransfer",  "Telemetry",
    "HostSync",
};

void CheckTag(OrvkNicTagType tag) {
  if (tag < HostCtl::Network::MIN_TAG || tag > HostCtl::Network::MAX_TAG) {
    throw HostCtlException("Invalid tag " + std::to_string(static_cast<int>(tag)));
  }
}

}  // namespace

HostCtl::Network::OrvkNicTagType OrvkNicTagNameToId(std::string const& name) {
  for (int tag = HostCtl::Network::MIN_TAG; tag <= HostCtl::Network::MAX_TAG; ++tag) {
    if (name == kTagNames[tag - 1]) return static_cast<OrvkNicTagType>(tag);
  }
  return HostCtl::Network::NoTag;
}

std::string OrvkNicTagIdToName(HostCtl::Network::OrvkNicTagType tag) {
  if (tag < HostCtl::Network::MIN_TAG || tag > HostCtl::Network::MAX_TAG) return "None";
  return kTagNames[tag - 1];
}

OrvkNicImpl::OrvkNicImpl(std::string const& name) : name_(name) {}

OrvkNicImpl::~OrvkNicImpl() = default;

void OrvkNicImpl::Refresh() {
  CheckFault(Operation::OrvkNicImpl_Refresh);
  auto const& nic = ReadNic(name_);
  mtu_ = nic.mtu;
  mac_ = MacAddress(nic.mac);
  ip_config_ = ToConfig(nic.ip);
  configured_ip_config_ = ToConfig(nic.configured_ip);
  num_rx_queue_ = nic.num_rx_queue;
  tso_mss_ = nic.tso_mss;
}

std::string OrvkNicImpl::GetInterfaceName() {
  CheckFault(Operation::OrvkNicImpl_GetInterfaceName);
  EnsureFresh();
  return name_;
}

uint32_t OrvkNicImpl::GetMtu() {
  CheckFault(Operation::OrvkNicImpl_GetMtu);
  EnsureFresh();
  return mtu_;
}

void OrvkNicImpl::SetMtu(uint32_t mtu) {
  CheckFault(Operation::OrvkNicImpl_SetMtu);
  CheckMtu(name_, mtu);
  ChangeNic(name_, [&](HostModel&, InterfaceState& nic) { nic.mtu = mtu; });
  MarkStale();
}

MacAddress OrvkNicImpl::GetMacAddress() {
  CheckFault(Operation::OrvkNicImpl_GetMacAddress);
  EnsureFresh();
  return mac_;
}

IpConfig OrvkNicImpl::GetIpConfig() {
  CheckFault(Operation::OrvkNicImpl_GetIpConfig);
  EnsureFresh();
  return ip_config_;
}

IpConfig OrvkNicImpl::GetConfiguredIpConfig() {
  CheckFault(Operation::OrvkNicImpl_GetConfiguredIpConfig);
  EnsureFresh();
  return configured_ip_config_;
}

void OrvkNicImpl::SetIpConfig(IpConfig config) {
  CheckFault(Operation::OrvkNicImpl_SetIpConfig);
  ChangeNic(name_, [&](HostModel& host, InterfaceState& nic) {
    CheckIpv4(host, nic, config);
    nic.ip = ToState(config);
    nic.configured_ip = nic.ip;
    SyncOnLinkRoutes(host, nic);
  });
  MarkStale();
}

std::unique_ptr<ConnectionPoint> OrvkNicImpl::GetConnectionPoint() {
  CheckFault(Operation::OrvkNicImpl_GetConnectionPoint);
  HostModel const& host =
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  auto const& nic = ReadNic(host, name_);
  if (nic.connection_type == ConnectionPoint::PortGroupConnection) {
    if (!Sim::FindPortGroup(host.vswitch, nic.portgroup)) return nullptr;
    return std::make_unique<PortGroupImpl>(nic.portgroup);
  }
  return std::make_unique<StoredConnectionPoint>(nic);
}

std::unique_ptr<HostCtl::Network::OrvkNicPort> OrvkNicImpl::GetPort() {
  CheckFault(Operation::OrvkNicImpl_GetPort);
  HostModel const& host =
      Sim::ReadHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime);
  ReadNic(host, name_);
  auto const* port = PortOf(host, name_);
  if (!port) return nullptr;
  return std::make_unique<PortOfNic>(port->id);
}

void OrvkNicImpl::Enable() {
  CheckFault(Operation::OrvkNicImpl_Enable);
  ChangeNic(name_, [](HostModel&, InterfaceState& nic) { nic.enabled = true; });
}

void OrvkNicImpl::Disable() {
  CheckFault(Operation::OrvkNicImpl_Disable);
  ChangeNic(name_, [](HostModel&, InterfaceState& nic) { nic.enabled = false; });
}

bool OrvkNicImpl::IsEnabled() {
  CheckFault(Operation::OrvkNicImpl_IsEnabled);
  return ReadNic(name_).enabled;
}

void OrvkNicImpl::Remove() {
  CheckFault(Operation::OrvkNicImpl_Remove);
  Sim::ChangeHost(
      Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime, [&](HostModel& host) {
        if (!Sim::FindInterface(host.ip, name_)) throw NotFound(name_);
        Sim::RemoveInterface(host, name_);
      });
  MarkStale();
}

uint32_t OrvkNicImpl::GetNumRxQueue() {
  CheckFault(Operation::OrvkNicImpl_GetNumRxQueue);
  EnsureFresh();
  return num_rx_queue_;
}

uint32_t OrvkNicImpl::GetTsoMss() {
  CheckFault(Operation::OrvkNicImpl_GetTsoMss);
  EnsureFresh();
  return tso_mss_;
}

std::string OrvkNicImpl::GetNetstackInstanceKey() {
  CheckFault(Operation::OrvkNicImpl_GetNetstackInstanceKey);
  return ReadNic(name_).netstack;
}

void OrvkNicImpl::GetTags(std::vector<OrvkNicTagType>& tags) {
  CheckFault(Operation::OrvkNicImpl_GetTags);
  tags.clear();
  for (int tag : ReadNic(name_).tags) tags.push_back(static_cast<OrvkNicTagType>(tag));
}

void OrvkNicImpl::AddTag(OrvkNicTagType tag, bool) {
  CheckFault(Operation::OrvkNicImpl_AddTag);
  CheckTag(tag);
  ChangeNic(name_, [&](HostModel&, InterfaceState& nic) {
    if (std::find(nic.tags.begin(), nic.tags.end(), tag) == nic.tags.end()) {
      nic.tags.push_back(tag);
    }
  });
}

void OrvkNicImpl::RemoveTag(OrvkNicTagType tag) {
  CheckFault(Operation::OrvkNicImpl_RemoveTag);
  CheckTag(tag);
  ChangeNic(name_, [&](HostModel&, InterfaceState& nic) {
    auto it = std::find(nic.tags.begin(), nic.tags.end(), tag);
    if (it == nic.tags.end()) {
      throw HostCtlException("Tag " + std::to_string(static_cast<int>(tag)) + " is not set on " +
                             name_);
    }
    nic.tags.erase(it);
  });
}

void OrvkNicImpl::Commit() {
  CheckFault(Operation::OrvkNicImpl_Commit);
  ReadNic(name_);
}

OrvikNicInfoImpl::OrvikNicInfoImpl() = default;
OrvikNicInfoImpl::~OrvikNicInfoImpl() = default;

void OrvikNicInfoImpl::Refresh() { CheckFault(Operation::OrvikNicInfoImpl_Refresh); }

namespace {

HostCtl::Network::OrvkNicList Select(std::function<bool(InterfaceState const&)> const& keep) {
  HostCtl::Network::OrvkNicList nics;
  for (auto const& nic : Sim::ReadHost(Sim::kAreaIp).ip.interfaces) {
    if (keep(nic)) nics.push_back(std::make_unique<OrvkNicImpl>(nic.name));
  }
  return nics;
}

}  // namespace

HostCtl::Network::OrvkNicList OrvikNicInfoImpl::GetOrvikNics() {
  CheckFault(Operation::OrvikNicInfoImpl_GetOrvikNics);
  return Select([](InterfaceState const&) { return true; });
}

HostCtl::Network::OrvkNicList OrvikNicInfoImpl::GetOrvikNicsByInstanceKey(std::string const& key) {
  CheckFault(Operation::OrvikNicInfoImpl_GetOrvikNicsByInstanceKey);
  return Select([&](InterfaceState const& nic) { return nic.netstack == key; });
}

void OrvikNicInfoImpl::GetOrvikNicNamesByInstanceKey(std::vector<std::string>& names,
                                                     std::string const& key) {
  CheckFault(Operation::OrvikNicInfoImpl_GetOrvikNicNamesByInstanceKey);
  for (auto const& nic : Sim::ReadHost(Sim::kAreaIp).ip.interfaces) {
    if (nic.netstack == key) names.push_back(nic.name);
  }
}

HostCtl::Network::OrvkNicList OrvikNicInfoImpl::GetOrvikNicsByTag(OrvkNicTagType tag) {
  CheckFault(Operation::OrvikNicInfoImpl_GetOrvikNicsByTag);
  return Select([&](InterfaceState const& nic) {
    return std::find(nic.tags.begin(), nic.tags.end(), tag) != nic.tags.end();
  });
}

std::unique_ptr<OrvkNic> OrvikNicInfoImpl::GetOrvikNicByInterface(std::string const& name, bool) {
  CheckFault(Operation::OrvikNicInfoImpl_GetOrvikNicByInterface);
  if (!Sim::FindInterface(Sim::ReadHost(Sim::kAreaIp).ip, name)) return nullptr;
  return std::make_unique<OrvkNicImpl>(name);
}

std::unique_ptr<OrvkNic> OrvikNicInfoImpl::AddOrvikNic(
    ConnectionPoint* point, std::string const& key, IpConfig const& config, MacAddress const& mac,
    uint32_t, uint32_t mtu, uint32_t numRxQueue, std::string const& name, bool) {
  CheckFault(Operation::OrvikNicInfoImpl_AddOrvikNic);
  static const std::regex kName("orvk([0-9]|[1-9][0-9]|1[0-9][0-9]|2[0-4][0-9]|25[0-5])");
  InterfaceState nic = Attach(point);
  std::string made;
  Sim::ChangeHost(
      Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime, [&](HostModel& host) {
        if (!NetstackExists(host, key)) {
          throw HostCtlException("Netstack instance " + key + " does not exist");
        }
        for (auto const& other : host.ip.interfaces) {
          if (SameConnection(other, nic)) {
            throw HostCtlException("The " + Describe(nic) + " already has the interface " +
                                   other.name);
          }
        }
        nic.name = name.empty() ? FreeName(host) : name;
        if (!std::regex_match(nic.name, kName)) {
          throw HostCtlException("Invalid interface name " + nic.name +
                                 ": it must be orvk0 to orvk255");
        }
        if (Sim::FindInterface(host.ip, nic.name)) {
          throw HostCtlException("Orvik network interface " + nic.name + " already exists");
        }
        if (mac == MacAddress()) {
          nic.mac = FreeMac(host);
        } else {
          nic.mac = mac.GetStringAddress();
          if (mac.GetBytes()[0] & 0x01) {
            throw HostCtlException("Invalid MAC address " + nic.mac +
                                   ": it is a multicast address");
          }
          if (auto owner = MacOwner(host, nic.mac); !owner.empty()) {
            throw HostCtlException("MAC address " + nic.mac + " is already in use by " + owner);
          }
        }
        nic.mtu = mtu == 0 ? kDefaultMtu : mtu;
        CheckMtu(nic.name, nic.mtu);
        if (numRxQueue > kMaxRxQueues) {
          throw HostCtlException("Invalid number of RX dispatch queues " +
                                 std::to_string(numRxQueue) + ": at most " +
                                 std::to_string(kMaxRxQueues));
        }
        nic.num_rx_queue = numRxQueue == 0 ? 1 : numRxQueue;
        nic.netstack = key;
        CheckDVPortFree(host, nic);
        CheckIpv4(host, nic, config);
        nic.ip = ToState(config);
        nic.configured_ip = nic.ip;
        CountClient(host, nic, +1);
        OpenPort(host, nic);
        host.ip.interfaces.push_back(nic);
        SyncOnLinkRoutes(host, nic);
        made = nic.name;
      });
  return std::make_unique<OrvkNicImpl>(made);
}

void OrvikNicInfoImpl::RemoveOrvikNic(ConnectionPoint* point, std::string const& key) {
  CheckFault(Operation::OrvikNicInfoImpl_RemoveOrvikNic);
  if (!point) throw HostCtlException("No connection point given for the Orvik network interface");
  InterfaceState wanted = Attach(point);
  Sim::ChangeHost(Sim::kAreaNic | Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime,
                  [&](HostModel& host) {
                    auto& all = host.ip.interfaces;
                    auto it = std::find_if(all.begin(), all.end(), [&](InterfaceState const& nic) {
                      return nic.netstack == key && SameConnection(nic, wanted);
                    });
                    if (it == all.end()) {
                      throw HostCtlException("No Orvik network interface on " + Describe(wanted) +
                                             " in netstack " + key);
                    }
                    Sim::RemoveInterface(host, it->name);
                  });
}

}  // namespace OrvkCtl::Network
