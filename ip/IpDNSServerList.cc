#include <string>

#include "hostctl/dns.h"
#include "ip/IpCommands.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kDnsServers = "DNS Servers";
}  // namespace

NETWORK_COMMAND_NEW(IpDNSServerList, Struct)

IpDNSServerList::IpDNSServerList() {
  SetDescription(
      "Print a list of the DNS server currently configured on the system in the order in which "
      "they will be used.");
  SetDefaultOutputFormatter("simple");
}

std::shared_ptr<MetaStruct> IpDNSServerList::GetOutputStructure() {
  auto result = MetaStruct::New("NameServerList");
  result->SetField(kDnsServers, MetaList::New(MetaType::String));
  return result;
}

std::shared_ptr<InputSpec> IpDNSServerList::GetInputSpecInternal() {
  return InputSpecOf({NewNetstackParameter(NetstackScope::UseDefault)});
}

void IpDNSServerList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::DnsConfigImpl dnsConfig(NetstackOrDefault(*input));
  try {
    auto servers = MetaList::New(MetaType::String);
    for (auto const& server : dnsConfig.GetNameServers()) servers->Add(server);
    auto result = GetOutputStructure();
    result->SetField(kDnsServers, servers);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
