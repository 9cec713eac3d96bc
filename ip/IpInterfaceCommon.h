// What the interface commands share: the text of an optional parameter, and
// the connection point of `network ip interface add` and `remove` (which of
// --portgroup-name, --dvs-name and --dvport-id name it, and the object built
// from them).
#pragma once

#include <memory>
#include <string>

#include "frame/KitDeclarations.h"

namespace HostCtl::Network {
class ConnectionPoint;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

// The parameter's text; empty when it was not given.
std::string OptionalText(Toolbase::CallSpec::Input const& input, std::string const& name);

// True when the options name exactly one connection point: --portgroup-name
// alone, or --dvs-name with --dvport-id. Otherwise adds the error to `output`.
// Touches no host service.
bool CheckConnectionParameters(Toolbase::CallSpec::Input const& input,
                               Toolbase::CallSpec::Output& output);

// Builds the connection point the options name: a port group for
// --portgroup-name alone, a DVPort for --dvs-name with --dvport-id. A DVPort
// that has no connection id yet gets one. Any other combination, a name the
// host does not know, or a connection point that is not valid adds its error
// to `output` and gives null. A HostCtlException from the final validity check
// passes on.
std::unique_ptr<HostCtl::Network::ConnectionPoint> BuildConnectionPoint(
    Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output);

enum class Ipv6AddressChange { Add, Remove };

// The parameters of both: "interface-name" (-i) and "ipv6" (-I), required,
// with their help texts.
std::shared_ptr<Toolbase::CallSpec::InputSpec> Ipv6AddressSpec(char const* interfaceHelp,
                                                               char const* addressHelp);

// The body of `interface ipv6 address add` and `remove`: checks the text of
// "ipv6" as address and prefix length, finds the interface `name` and adds
// the network to its IP configuration or removes it; root `true`. A bad text
// or an unknown interface adds its message and sets no root; the host's
// refusals pass on as HostCtlException.
void ChangeIpv6Address(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                       std::string const& name, Ipv6AddressChange change);

}  // namespace CorvaneCli::NetworkNamespace
