// What the IPv4 and IPv6 route commands share: `add`, `remove` and `list` of
// the two families differ only in the address types and the host operations
// of their family (and `ipv6 remove` reads both addresses before it picks the
// instance; only IPv4 routes show their "Source").
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "frame/KitDeclarations.h"

namespace CorvaneCli::NetworkNamespace {

// The long names of the two required parameters.
extern const std::string kRouteNetwork;
extern const std::string kRouteGateway;

enum class RouteFamily { Ipv4, Ipv6 };

// The body of `route ipv4 add` and `route ipv6 add`: the instance of
// `--netstack` (else the default one), the gateway, then the route to the
// network or, for "default", to the default network; root `true`. Address
// texts the library cannot read throw HostCtlException.
void AddRoute(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
              RouteFamily family);

// The body of `route ipv4 remove` and `route ipv6 remove`. The default
// network is removed by dropping the default gateway, when `--gateway` is the
// gateway in force or configured; otherwise "<gateway> is not a default
// route." is added. Root `true` in both cases.
void RemoveRoute(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                 RouteFamily family);

// The row of a `list`: "Ipv4Route" or "Ipv6Route" with the string fields
// "Network", "Netmask", "Gateway", "Interface" and, for IPv4, "Source".
std::shared_ptr<Toolbase::MetaObj::MetaStruct> RouteStructure(RouteFamily family);
// The name and the value of the `list`'s `fields:` directive.
std::string RouteFieldsDirective(RouteFamily family);
std::string RouteFields(RouteFamily family);

// The body of `route ipv4 list` and `route ipv6 list`: the routes of the
// instance of `--netstack` (else the default one), one row from `newRow` per
// route, "default" for the default network. A failure of the host passes on
// as HostCtlException.
std::shared_ptr<Toolbase::MetaObj::MetaList> ListRoutes(
    Toolbase::CallSpec::Input const& input, RouteFamily family,
    std::function<std::shared_ptr<Toolbase::MetaObj::MetaStruct>()> const& newRow);

}  // namespace CorvaneCli::NetworkNamespace
