#include <algorithm>
#include <functional>

#include "fault.h"
#include "host_backend.h"
#include "hostctl/routing.h"

namespace OrvkCtl::Network {
namespace {

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv4Network;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;
using Sim::CheckFault;
using Sim::Operation;
using Sim::NetstackRoutes;
using Sim::RouteState;

const std::string kManual = "MANUAL";

// What the two address families differ in.
struct Ipv4Family {
  using Address = Ipv4Address;
  using Network = Ipv4Network;
  using Record = HostCtl::Network::Ipv4RouteRecord;

  static unsigned Prefix(Network const& network) { return network.GetPrefixLength(); }
  static std::vector<RouteState>& Table(NetstackRoutes& routes) { return routes.ipv4; }
  static std::vector<RouteState> const& Table(NetstackRoutes const& routes) { return routes.ipv4; }
  static std::string& ConfigGateway(NetstackRoutes& routes) { return routes.ipv4_config_gateway; }
};

struct Ipv6Family {
  using Address = Ipv6Address;
  using Network = Ipv6Network;
  using Record = HostCtl::Network::Ipv6RouteRecord;

  static unsigned Prefix(Network const& network) { return network.GetNetmask(); }
  static std::vector<RouteState>& Table(NetstackRoutes& routes) { return routes.ipv6; }
  static std::vector<RouteState> const& Table(NetstackRoutes const& routes) { return routes.ipv6; }
  static std::string& ConfigGateway(NetstackRoutes& routes) { return routes.ipv6_config_gateway; }
};

HostCtlException UnknownNetstack(std::string const& key) {
  return HostCtlException("Netstack instance " + key + " does not exist");
}

NetstackRoutes const& ReadRoutes(std::string const& key) {
  auto const* routes = Sim::FindNetstackRoutes(Sim::ReadHost(Sim::kAreaIp).ip, key);
  if (!routes) throw UnknownNetstack(key);
  return *routes;
}

void ChangeRoutes(std::string const& key, std::function<void(NetstackRoutes&)> const& change) {
  Sim::ChangeHost(Sim::kAreaIp, [&](Sim::HostModel& host) {
    auto* routes = Sim::FindNetstackRoutes(host.ip, key);
    if (!routes) throw UnknownNetstack(key);
    change(*routes);
  });
}

// "10.50.0.0/16" for 10.50.1.7/16.
template <class F>
std::string NetworkText(typename F::Network const& network) {
  return typename F::Network(network.GetNetwork(), F::Prefix(network)).GetStringAddress();
}

template <class F>
std::string DefaultText() {
  return NetworkText<F>(typename F::Network());
}

std::vector<RouteState>::iterator FindRoute(std::vector<RouteState>& table,
                                            std::string const& network) {
  return std::find_if(table.begin(), table.end(),
                      [&](RouteState const& row) { return row.network == network; });
}

// The interface whose own network holds `gateway`.
template <class F>
std::string InterfaceReaching(NetstackRoutes const& routes, typename F::Address const& gateway) {
  std::string const none = typename F::Address().GetStringAddress();
  if (gateway == typename F::Address()) {
    throw HostCtlException("Invalid gateway " + none + ": a route needs a gateway address");
  }
  for (auto const& row : F::Table(routes)) {
    if (row.gateway != none) continue;
    typename F::Network onLink(row.network);
    if (typename F::Network(gateway, F::Prefix(onLink)).GetNetwork() == onLink.GetNetwork()) {
      return row.interface;
    }
  }
  throw HostCtlException("Gateway " + gateway.GetStringAddress() +
                         " is not reachable from netstack " + routes.netstack);
}

template <class F>
void SetDefault(NetstackRoutes& routes, typename F::Address const& gateway, bool runtimeOnly) {
  auto& table = F::Table(routes);
  std::string const text = gateway.GetStringAddress();
  auto current = FindRoute(table, DefaultText<F>());
  if (gateway == typename F::Address()) {
    if (current != table.end()) table.erase(current);
  } else {
    RouteState row{DefaultText<F>(), text, InterfaceReaching<F>(routes, gateway), kManual};
    if (current != table.end()) {
      *current = row;
    } else {
      table.insert(table.begin(), row);
    }
  }
  if (!runtimeOnly) F::ConfigGateway(routes) = text;
}

template <class F>
void AddRoute(std::string const& key, typename F::Network const& network,
              typename F::Address const& gateway) {
  std::string const text = NetworkText<F>(network);
  ChangeRoutes(key, [&](NetstackRoutes& routes) {
    auto& table = F::Table(routes);
    auto existing = FindRoute(table, text);
    if (existing != table.end() && text == DefaultText<F>()) {
      throw HostCtlException("Netstack " + key + " already has a default route, through " +
                             existing->gateway);
    }
    if (existing != table.end()) {
      throw HostCtlException("A route to " + text + " already exists in netstack " + key);
    }
    if (text == DefaultText<F>()) {
      SetDefault<F>(routes, gateway, false);
    } else {
      table.push_back(
          {text, gateway.GetStringAddress(), InterfaceReaching<F>(routes, gateway), kManual});
    }
  });
}

template <class F>
void RemoveRoute(std::string const& key, typename F::Network const& network,
                 typename F::Address const& gateway) {
  std::string const text = NetworkText<F>(network);
  std::string const via = gateway.GetStringAddress();
  ChangeRoutes(key, [&](NetstackRoutes& routes) {
    auto& table = F::Table(routes);
    auto row = FindRoute(table, text);
    if (row == table.end() || row->gateway != via) {
      throw HostCtlException("No route to " + text + " via " + via + " in netstack " + key);
    }
    if (via == typename F::Address().GetStringAddress()) {
      throw HostCtlException("The route to " + text + " belongs to interface " + row->interface +
                             " and cannot be removed");
    }
    bool isDefault = text == DefaultText<F>();
    table.erase(row);
    if (isDefault && F::ConfigGateway(routes) == via) {
      F::ConfigGateway(routes) = typename F::Address().GetStringAddress();
    }
  });
}

template <class F>
std::vector<typename F::Record> CurrentRoutes(std::string const& key) {
  std::vector<typename F::Record> records;
  for (auto const& row : F::Table(ReadRoutes(key))) {
    records.push_back(
        {typename F::Network(row.network), typename F::Address(row.gateway), row.interface});
  }
  return records;
}

template <class F>
typename F::Address DefaultGateway(std::string const& key) {
  auto const& table = F::Table(ReadRoutes(key));
  for (auto const& row : table) {
    if (row.network == DefaultText<F>()) return typename F::Address(row.gateway);
  }
  return typename F::Address();
}

}  // namespace

const Ipv4Network RoutingInfoImpl::DEFAULT_IPV4_ROUTE(Ipv4Address(), 0);
const Ipv6Network RoutingInfoImpl::DEFAULT_IPV6_ROUTE(Ipv6Address(), 0);

RoutingInfoImpl::RoutingInfoImpl(std::string const& netstackKey) : key_(netstackKey) {}
RoutingInfoImpl::~RoutingInfoImpl() = default;

void RoutingInfoImpl::Refresh() {
  CheckFault(Operation::RoutingInfoImpl_Refresh);
  ReadRoutes(key_);
}

void RoutingInfoImpl::SetNetstackInstanceKey(std::string const& key) {
  CheckFault(Operation::RoutingInfoImpl_SetNetstackInstanceKey);
  ReadRoutes(key);
  key_ = key;
  MarkStale();
}

void RoutingInfoImpl::AddOrvikRoute(Ipv4Network const& network, Ipv4Address const& gateway) {
  CheckFault(Operation::RoutingInfoImpl_AddOrvikRoute);
  AddRoute<Ipv4Family>(key_, network, gateway);
}

void RoutingInfoImpl::RemoveOrvikRoute(Ipv4Network const& network, Ipv4Address const& gateway) {
  CheckFault(Operation::RoutingInfoImpl_RemoveOrvikRoute);
  RemoveRoute<Ipv4Family>(key_, network, gateway);
}

void RoutingInfoImpl::AddIpv6OrvikRoute(Ipv6Network const& network, Ipv6Address const& gateway) {
  CheckFault(Operation::RoutingInfoImpl_AddIpv6OrvikRoute);
  AddRoute<Ipv6Family>(key_, network, gateway);
}

void RoutingInfoImpl::RemoveIpv6OrvikRoute(Ipv6Network const& network, Ipv6Address const& gateway) {
  CheckFault(Operation::RoutingInfoImpl_RemoveIpv6OrvikRoute);
  RemoveRoute<Ipv6Family>(key_, network, gateway);
}

std::vector<HostCtl::Network::Ipv4RouteRecord> RoutingInfoImpl::GetCurrentOrvikRoutes() {
  CheckFault(Operation::RoutingInfoImpl_GetCurrentOrvikRoutes);
  return CurrentRoutes<Ipv4Family>(key_);
}

std::vector<HostCtl::Network::Ipv6RouteRecord> RoutingInfoImpl::GetCurrentIpv6OrvikRoutes() {
  CheckFault(Operation::RoutingInfoImpl_GetCurrentIpv6OrvikRoutes);
  return CurrentRoutes<Ipv6Family>(key_);
}

std::string RoutingInfoImpl::GetDefaultGatewaySource(Ipv4Network const& network) {
  CheckFault(Operation::RoutingInfoImpl_GetDefaultGatewaySource);
  std::string const text = NetworkText<Ipv4Family>(network);
  for (auto const& row : ReadRoutes(key_).ipv4) {
    if (row.network == text) return row.source;
  }
  return "N/A";
}

Ipv4Address RoutingInfoImpl::GetOrvikDefaultGateway() {
  CheckFault(Operation::RoutingInfoImpl_GetOrvikDefaultGateway);
  return DefaultGateway<Ipv4Family>(key_);
}

Ipv4Address RoutingInfoImpl::GetOrvikConfigDefaultGateway() {
  CheckFault(Operation::RoutingInfoImpl_GetOrvikConfigDefaultGateway);
  return Ipv4Address(ReadRoutes(key_).ipv4_config_gateway);
}

void RoutingInfoImpl::SetOrvikDefaultGateway(Ipv4Address const& gateway, bool runtimeOnly) {
  CheckFault(Operation::RoutingInfoImpl_SetOrvikDefaultGateway);
  ChangeRoutes(
      key_, [&](NetstackRoutes& routes) { SetDefault<Ipv4Family>(routes, gateway, runtimeOnly); });
}

Ipv6Address RoutingInfoImpl::GetIpv6OrvikDefaultGateway() {
  CheckFault(Operation::RoutingInfoImpl_GetIpv6OrvikDefaultGateway);
  return DefaultGateway<Ipv6Family>(key_);
}

Ipv6Address RoutingInfoImpl::GetIpv6OrvikConfigDefaultGateway() {
  CheckFault(Operation::RoutingInfoImpl_GetIpv6OrvikConfigDefaultGateway);
  return Ipv6Address(ReadRoutes(key_).ipv6_config_gateway);
}

void RoutingInfoImpl::SetIpv6OrvikDefaultGateway(Ipv6Address const& gateway) {
  CheckFault(Operation::RoutingInfoImpl_SetIpv6OrvikDefaultGateway);
  ChangeRoutes(key_,
               [&](NetstackRoutes& routes) { SetDefault<Ipv6Family>(routes, gateway, false); });
}

}  // namespace OrvkCtl::Network
