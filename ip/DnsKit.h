// What the DNS commands share: the name server address as the two server
// commands read it, and the body of the two search domain changes.
#pragma once

#include <memory>
#include <string>

#include "frame/KitDeclarations.h"

namespace HostCtl::Network {
class IpAddress;
}  // namespace HostCtl::Network

namespace CorvaneCli::NetworkNamespace {

extern const std::string kDnsServerOption;

// `text` as an IPv4 address if it is one, else as an IPv6 address; null
// after adding the "not recognised" message when it is neither.
std::unique_ptr<HostCtl::Network::IpAddress> MakeServerAddress(std::string const& text,
                                                               Toolbase::CallSpec::Output& output);

enum class SearchDomainChange { Add, Remove };

// The `--domain` parameter of the two search domain changes, then
// `--netstack`.
void AddSearchDomainParameters(Toolbase::CallSpec::InputSpec& spec, char const* description);

// The whole run of `dns search add` and `dns search remove`.
void ChangeSearchDomain(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                        SearchDomainChange change);

}  // namespace CorvaneCli::NetworkNamespace
