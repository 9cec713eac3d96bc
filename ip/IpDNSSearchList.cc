#include <string>
#include <vector>

#include "hostctl/dns.h"
#include "hostctl/misc.h"
#include "ip/IpCommands.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kSearchDomains = "DNS Search Domains";
}  // namespace

NETWORK_COMMAND_NEW(IpDNSSearchList, Struct)

IpDNSSearchList::IpDNSSearchList() {
  SetDescription(
      "List the search domains currently configured on the Haldeni host in the order in which "
      "they will be used when searching.");
  SetDefaultOutputFormatter("simple");
}

std::shared_ptr<MetaStruct> IpDNSSearchList::GetOutputStructure() {
  auto result = MetaStruct::New("DNSSearchList");
  result->SetField(kSearchDomains, MetaList::New(MetaType::String));
  return result;
}

std::shared_ptr<InputSpec> IpDNSSearchList::GetInputSpecInternal() {
  return InputSpecOf({NewNetstackParameter(NetstackScope::UseDefault)});
}

void IpDNSSearchList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::DnsConfigImpl dnsConfig(NetstackOrDefault(*input));
  try {
    std::vector<std::string> tokens;
    HostCtl::Misc::StringTokenize(dnsConfig.GetSearchDomainsString(), tokens, " ");
    auto domains = MetaList::New(MetaType::String);
    for (auto const& domain : tokens) domains->Add(domain);
    auto result = GetOutputStructure();
    result->SetField(kSearchDomains, domains);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
