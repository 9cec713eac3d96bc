// Netstack instances of the simulated host, and the global IPv6 switch.
#include <algorithm>
#include <cctype>
#include <functional>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/netstack.h"
#include "hostctl/network_info.h"

namespace HostCtl::Network {

const uint32_t NetstackInstance::STATE_UP = OrvkCtl::Sim::kNetstackStateUp;
const uint32_t NetstackInstance::MIN_MAX_CONNECTIONS = 1000;
const uint32_t NetstackInstance::MAX_MAX_CONNECTIONS = 1000000;

NetstackInstance::~NetstackInstance() = default;

}  // namespace HostCtl::Network

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::NetstackInstance;
using Sim::CheckFault;
using Sim::Operation;
using Sim::HostModel;
using Sim::NetstackState;

const std::string kDefaultKey = "defaultTcpipStack";
// What a netstack operation reads: the instances, and the switches and ports
// their interfaces use.
constexpr Sim::AreaSet kNetstackAreas = Sim::kAreaIp | Sim::kAreaVswitch | Sim::kAreaRuntime;
constexpr size_t kMaxKeyLength = 32;
const std::vector<std::string> kEcnWords = {"disabled", "enabled", "echo-only"};

HostCtlException UnknownNetstack(std::string const& key) {
  return HostCtlException("Netstack instance " + key + " does not exist");
}

NetstackState const& ReadNetstack(HostModel const& host, std::string const& key) {
  auto const* netstack = Sim::FindNetstack(host.ip, key);
  if (!netstack) throw UnknownNetstack(key);
  return *netstack;
}

// The netstack `key` as the host has it. For an object made detached, null
// while its netstack is not on the host; otherwise a missing one throws.
NetstackState const* HostNetstack(std::string const& key, bool detached) {
  HostModel const& host = Sim::ReadHost(kNetstackAreas);
  if (detached && !Sim::FindNetstack(host.ip, key)) return nullptr;
  return &ReadNetstack(host, key);
}

void ChangeNetstack(std::string const& key,
                    std::function<void(HostModel&, NetstackState&)> const& change) {
  Sim::ChangeHost(kNetstackAreas, [&](HostModel& host) {
    auto* netstack = Sim::FindNetstack(host.ip, key);
    if (!netstack) throw UnknownNetstack(key);
    change(host, *netstack);
  });
}

// The interfaces of the instance, by name.
std::vector<std::string> InterfacesOf(HostModel const& host, std::string const& key) {
  std::vector<std::string> names;
  for (auto const& nic : host.ip.interfaces) {
    if (nic.netstack == key) names.push_back(nic.name);
  }
  return names;
}

std::string JoinNames(std::vector<std::string> const& names) {
  std::string text;
  for (auto const& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

void CheckKey(std::string const& key) {
  if (key.empty()) throw HostCtlException("Netstack instance key cannot be empty");
  if (key.size() > kMaxKeyLength) {
    throw HostCtlException("Netstack instance key " + key + " is longer than " +
                           std::to_string(kMaxKeyLength) + " characters");
  }
  for (unsigned char c : key) {
    if (!std::isalnum(c) && c != '_' && c != '-') {
      throw HostCtlException("Invalid netstack instance key " + key +
                             ": only letters, digits, '_' and '-' are allowed");
    }
  }
}

void CheckMaxConnections(uint32_t value) {
  if (value < NetstackInstance::MIN_MAX_CONNECTIONS ||
      value > NetstackInstance::MAX_MAX_CONNECTIONS) {
    throw HostCtlException("Invalid maximum number of connections " + std::to_string(value) +
                           ": it must be between " +
                           std::to_string(NetstackInstance::MIN_MAX_CONNECTIONS) + " and " +
                           std::to_string(NetstackInstance::MAX_MAX_CONNECTIONS));
  }
}

void CheckAlgorithm(std::string const& algorithm) {
  auto const algorithms = NetstackInstanceImpl::GetCongestionControlAlgorithmList();
  if (std::find(algorithms.begin(), algorithms.end(), algorithm) == algorithms.end()) {
    throw HostCtlException("Unsupported congestion control algorithm " + algorithm);
  }
}

void CheckEcn(std::string const& status) {
  if (std::find(kEcnWords.begin(), kEcnWords.end(), status) == kEcnWords.end()) {
    throw HostCtlException("Invalid ECN status " + status +
                           ": it must be disabled, enabled or echo-only");
  }
}

// Brings the settings in force to the configured ones: what creating the
// instance in the kernel does.
void BringUp(NetstackState& netstack) {
  netstack.state = Sim::kNetstackStateUp;
  netstack.current_max_connections = netstack.max_connections;
  netstack.current_ipv6_enabled = netstack.ipv6_enabled;
}

void BringDown(HostModel const& host, NetstackState& netstack) {
  if (netstack.key == kDefaultKey) {
    throw HostCtlException("The default netstack instance " + kDefaultKey +
                           " cannot be disabled or removed");
  }
  auto interfaces = InterfacesOf(host, netstack.key);
  if (!interfaces.empty()) {
    throw HostCtlException("Netstack instance " + netstack.key + " still has interfaces (" +
                           JoinNames(interfaces) + "); remove them first");
  }
  netstack.state = 0;
  netstack.current_max_connections = 0;
  netstack.current_ipv6_enabled = false;
}

}  // namespace

// ---- NetstackInstanceImpl ----

NetstackInstanceImpl::NetstackInstanceImpl(std::string const& key) : key_(key) {}

NetstackInstanceImpl::NetstackInstanceImpl(std::string const& key, uint32_t maxConnections,
                                           std::string const& ccAlgorithm, bool ipv6Enabled,
                                           uint32_t flags, std::string const& ecnStatus)
    : key_(key),
      detached_(true),
      name_(key),
      maxConnections_(maxConnections),
      ccAlgorithm_(ccAlgorithm),
      ipv6Enabled_(ipv6Enabled),
      ecnStatus_(ecnStatus),
      flags_(flags) {}

NetstackInstanceImpl::~NetstackInstanceImpl() = default;

std::vector<std::string> NetstackInstanceImpl::GetCongestionControlAlgorithmList() {
  return {"newreno", "cubic"};
}

void NetstackInstanceImpl::Refresh() {
  CheckFault(Operation::NetstackInstanceImpl_Refresh);
  auto const* netstack = Sim::FindNetstack(Sim::ReadHost(kNetstackAreas).ip, key_);
  if (!netstack) {
    if (detached_) return;
    throw UnknownNetstack(key_);
  }
  detached_ = false;
  name_ = netstack->name;
  state_ = netstack->state;
  maxConnections_ = netstack->max_connections;
  currentMaxConnections_ = netstack->current_max_connections;
  ccAlgorithm_ = netstack->cc_algorithm;
  ipv6Enabled_ = netstack->ipv6_enabled;
  currentIpv6Enabled_ = netstack->current_ipv6_enabled;
  ecnStatus_ = netstack->ecn_status;
  flags_ = netstack->flags;
}

std::string NetstackInstanceImpl::GetInstanceKey() {
  CheckFault(Operation::NetstackInstanceImpl_GetInstanceKey);
  return key_;
}

std::string NetstackInstanceImpl::GetInstanceName() {
  CheckFault(Operation::NetstackInstanceImpl_GetInstanceName);
  EnsureFresh();
  return name_;
}

void NetstackInstanceImpl::SetInstanceName(std::string const& name, bool /*persist*/) {
  CheckFault(Operation::NetstackInstanceImpl_SetInstanceName);
  if (name.empty()) throw HostCtlException("Netstack instance name cannot be empty");
  // A name is shown in lists and tables: no line breaks or terminal controls.
  if (std::any_of(name.begin(), name.end(),
                  [](unsigned char c) { return c < 0x20 || c == 0x7f; })) {
    throw HostCtlException("Netstack instance name " + name + " contains a control character");
  }
  ChangeNetstack(key_, [&](HostModel&, NetstackState& netstack) { netstack.name = name; });
  MarkStale();
}

uint32_t NetstackInstanceImpl::GetMaxConnections() {
  CheckFault(Operation::NetstackInstanceImpl_GetMaxConnections);
  auto const* netstack = HostNetstack(key_, detached_);
  return netstack ? netstack->max_connections : maxConnections_;
}

void NetstackInstanceImpl::SetMaxConnections(uint32_t maxConnections, bool /*persist*/) {
  CheckFault(Operation::NetstackInstanceImpl_SetMaxConnections);
  CheckMaxConnections(maxConnections);
  ChangeNetstack(key_, [&](HostModel&, NetstackState& netstack) {
    netstack.max_connections = maxConnections;
  });
  MarkStale();
}

std::string NetstackInstanceImpl::GetCongestionControlAlgorithm() {
  CheckFault(Operation::NetstackInstanceImpl_GetCongestionControlAlgorithm);
  auto const* netstack = HostNetstack(key_, detached_);
  return netstack ? netstack->cc_algorithm : ccAlgorithm_;
}

void NetstackInstanceImpl::SetCongestionControlAlgorithm(std::string const& algorithm,
                                                         bool /*persist*/) {
  CheckFault(Operation::NetstackInstanceImpl_SetCongestionControlAlgorithm);
  CheckAlgorithm(algorithm);
  ChangeNetstack(key_,
                 [&](HostModel&, NetstackState& netstack) { netstack.cc_algorithm = algorithm; });
  MarkStale();
}

bool NetstackInstanceImpl::GetCurrentIpv6Enabled() {
  CheckFault(Operation::NetstackInstanceImpl_GetCurrentIpv6Enabled);
  EnsureFresh();
  return currentIpv6Enabled_;
}

void NetstackInstanceImpl::SetIpv6Enabled(bool enabled, bool /*persist*/) {
  CheckFault(Operation::NetstackInstanceImpl_SetIpv6Enabled);
  ChangeNetstack(key_,
                 [&](HostModel&, NetstackState& netstack) { netstack.ipv6_enabled = enabled; });
  MarkStale();
}

bool NetstackInstanceImpl::GetIpv6Enabled() {
  CheckFault(Operation::NetstackInstanceImpl_GetIpv6Enabled);
  EnsureFresh();
  return ipv6Enabled_;
}

void NetstackInstanceImpl::SetEcnStatus(std::string const& status) {
  CheckFault(Operation::NetstackInstanceImpl_SetEcnStatus);
  CheckEcn(status);
  ChangeNetstack(key_, [&](HostModel&, NetstackState& netstack) { netstack.ecn_status = status; });
  MarkStale();
}

std::string NetstackInstanceImpl::GetEcnStatus() {
  CheckFault(Operation::NetstackInstanceImpl_GetEcnStatus);
  EnsureFresh();
  return ecnStatus_;
}

uint32_t NetstackInstanceImpl::GetState() {
  CheckFault(Operation::NetstackInstanceImpl_GetState);
  EnsureFresh();
  return state_;
}

uint32_t NetstackInstanceImpl::GetCurrentMaxConnections() {
  CheckFault(Operation::NetstackInstanceImpl_GetCurrentMaxConnections);
  EnsureFresh();
  return currentMaxConnections_;
}

void NetstackInstanceImpl::Enable() {
  CheckFault(Operation::NetstackInstanceImpl_Enable);
  ChangeNetstack(key_, [&](HostModel&, NetstackState& netstack) {
    if (netstack.state != Sim::kNetstackStateUp) BringUp(netstack);
  });
  MarkStale();
}

void NetstackInstanceImpl::Disable() {
  CheckFault(Operation::NetstackInstanceImpl_Disable);
  ChangeNetstack(key_, [&](HostModel& host, NetstackState& netstack) {
    if (netstack.state == Sim::kNetstackStateUp) BringDown(host, netstack);
  });
  MarkStale();
}

uint32_t NetstackInstanceImpl::GetFlags() {
  CheckFault(Operation::NetstackInstanceImpl_GetFlags);
  EnsureFresh();
  return flags_;
}

// ---- NetworkInfoImpl: netstack instances and global settings ----

HostCtl::Network::NetstackInstanceList NetworkInfoImpl::ListNetstackInstances() {
  CheckFault(Operation::NetworkInfoImpl_ListNetstackInstances);
  HostCtl::Network::NetstackInstanceList list;
  for (auto const& netstack : Sim::ReadHost(kNetstackAreas).ip.netstacks) {
    list.push_back(std::make_unique<NetstackInstanceImpl>(netstack.key));
  }
  return list;
}

std::unique_ptr<NetstackInstance> NetworkInfoImpl::LookupNetstackInstanceByKey(
    std::string const& key) {
  CheckFault(Operation::NetworkInfoImpl_LookupNetstackInstanceByKey);
  if (!Sim::FindNetstack(Sim::ReadHost(kNetstackAreas).ip, key)) return nullptr;
  return std::make_unique<NetstackInstanceImpl>(key);
}

void NetworkInfoImpl::AddNetstackInstance(NetstackInstance* instance, bool configOnly) {
  CheckFault(Operation::NetworkInfoImpl_AddNetstackInstance);
  if (!instance) throw HostCtlException("No netstack instance given");
  std::string key = instance->GetInstanceKey();
  CheckKey(key);
  if (Sim::FindNetstack(Sim::ReadHost(kNetstackAreas).ip, key)) {
    throw HostCtlException("Netstack instance " + key + " already exists");
  }
  NetstackState netstack;
  netstack.key = key;
  netstack.name = instance->GetInstanceName();
  netstack.max_connections = instance->GetMaxConnections();
  netstack.cc_algorithm = instance->GetCongestionControlAlgorithm();
  netstack.ipv6_enabled = instance->GetIpv6Enabled();
  netstack.ecn_status = instance->GetEcnStatus();
  if (auto* impl = dynamic_cast<NetstackInstanceImpl*>(instance)) netstack.flags = impl->GetFlags();
  CheckMaxConnections(netstack.max_connections);
  CheckAlgorithm(netstack.cc_algorithm);
  CheckEcn(netstack.ecn_status);
  if (!configOnly) BringUp(netstack);
  Sim::ChangeHost(kNetstackAreas, [&](HostModel& host) {
    if (Sim::FindNetstack(host.ip, key)) {
      throw HostCtlException("Netstack instance " + key + " already exists");
    }
    host.ip.netstacks.push_back(netstack);
    Sim::NetstackRoutes routes;
    routes.netstack = key;
    std::erase_if(host.ip.routes,
                  [&](Sim::NetstackRoutes const& stale) { return stale.netstack == key; });
    host.ip.routes.push_back(routes);
  });
  if (auto* object = dynamic_cast<Lib::OrvkCtlObject*>(instance)) object->MarkStale();
}

void NetworkInfoImpl::RemoveNetstackInstance(std::string const& key, bool kernelOnly) {
  CheckFault(Operation::NetworkInfoImpl_RemoveNetstackInstance);
  ChangeNetstack(key, [&](HostModel& host, NetstackState& netstack) {
    if (netstack.state == Sim::kNetstackStateUp || !kernelOnly) {
      // Refuses the default instance and one with interfaces.
      NetstackState copy = netstack;
      BringDown(host, copy);
      netstack = copy;
      // The instance's sockets go with it.
      std::erase_if(host.ip.connections,
                    [&](Sim::ConnectionState const& socket) { return socket.netstack == key; });
    }
    if (kernelOnly) return;
    std::erase_if(host.ip.routes,
                  [&](Sim::NetstackRoutes const& routes) { return routes.netstack == key; });
    std::erase_if(host.ip.dns,
                  [&](Sim::DnsConfigState const& config) { return config.netstack == key; });
    std::erase_if(host.ip.netstacks, [&](NetstackState const& other) { return other.key == key; });
  });
}

uint32_t NetworkInfoImpl::GetNetstackInstanceState(std::string const& key) {
  CheckFault(Operation::NetworkInfoImpl_GetNetstackInstanceState);
  auto const* netstack = Sim::FindNetstack(Sim::ReadHost(kNetstackAreas).ip, key);
  return netstack ? netstack->state : 0;
}

bool NetworkInfoImpl::IsOrvkIpv6Enabled() {
  CheckFault(Operation::NetworkInfoImpl_IsOrvkIpv6Enabled);
  // The setting as configured: it takes effect at the host's next start, and
  // until then the addresses, routes, neighbors and sockets of IPv6 stay.
  return Sim::ReadHost(kNetstackAreas).ip.ipv6_enabled;
}

void NetworkInfoImpl::SetOrvkIpv6Enabled(bool enabled) {
  CheckFault(Operation::NetworkInfoImpl_SetOrvkIpv6Enabled);
  Sim::ChangeHost(kNetstackAreas, [&](HostModel& host) { host.ip.ipv6_enabled = enabled; });
}

}  // namespace OrvkCtl::Network
