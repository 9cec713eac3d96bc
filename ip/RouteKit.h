// What the IPv4 and IPv6 route commands share: `add` and `remove` of the two
// families differ only in the address types and the host operations of their
// family (and `ipv6 remove` reads both addresses before it picks the
// instance).
#pragma once

#include <string>

namespace Toolbase::CallSpec {
class Input;
class Output;
}  // namespace Toolbase::CallSpec

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

}  // namespace CorvaneCli::NetworkNamespace
