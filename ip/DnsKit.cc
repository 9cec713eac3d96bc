#include "ip/DnsKit.h"

#include "frame/CommandKit.h"
#include "hostctl/dns.h"
#include "hostctl/network_types.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using HostCtl::Network::IpAddress;
using HostCtl::Network::Ipv4Address;
using HostCtl::Network::Ipv6Address;

const std::string kDnsServerOption = "server";

namespace {
const std::string kDomainOption = "domain";
}  // namespace

std::unique_ptr<IpAddress> MakeServerAddress(std::string const& text, Output& output) {
  if (Ipv4Address::IsValidAddress(text)) return std::make_unique<Ipv4Address>(text);
  if (Ipv6Address::IsValidAddress(text)) return std::make_unique<Ipv6Address>(text);
  output.AddErrorMessage("The specified address '" + text +
                         "' is not recognised as a valid IP address");
  return nullptr;
}

void AddSearchDomainParameters(InputSpec& spec, char const* description) {
  auto domain = Required(kDomainOption, ParameterType::String, "d", description);
  spec.AddParameter(domain);
  spec.AddParameter(NewNetstackParameter(NetstackScope::UseDefault));
}

void ChangeSearchDomain(Input const& input, Output& output, SearchDomainChange change) {
  OrvkCtl::Network::DnsConfigImpl dnsConfig(NetstackOrDefault(input));
  try {
    std::string const& domain = input.GetParameter(kDomainOption);
    if (change == SearchDomainChange::Add) {
      dnsConfig.AddUserSearchDomain(domain);
    } else {
      dnsConfig.RemoveSearchDomain(domain);
    }
    dnsConfig.SaveConfig();
    output.SetRootObject(Toolbase::MetaObj::MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output.AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
