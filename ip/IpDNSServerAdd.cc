#include <string>

#include "hostctl/dns.h"
#include "hostctl/network_types.h"
#include "ip/DnsKit.h"
#include "ip/IpCommands.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(IpDNSServerAdd, Bool)

IpDNSServerAdd::IpDNSServerAdd() {
  SetDescription(
      "Add a new DNS server to the end of the list of DNS servers to use for this Haldeni host.");
}

std::shared_ptr<InputSpec> IpDNSServerAdd::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kDnsServerOption, ParameterType::String, "s",
                "The IP address (v4 or v6) of the DNS server to add to the DNS server list."),
       NewNetstackParameter(NetstackScope::UseDefault)});
}

void IpDNSServerAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::DnsConfigImpl dnsConfig(NetstackOrDefault(*input));
  try {
    auto address = MakeServerAddress(input->GetParameter(kDnsServerOption), *output);
    if (!address) return;
    dnsConfig.AddUserNameServer(*address);
    dnsConfig.SaveConfig();
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
