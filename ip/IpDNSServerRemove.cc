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

namespace {
const std::string kAll = "all";
// Both options are deliberately left undocumented.
const char kUndocumented[] = " ";
}  // namespace

NETWORK_COMMAND_NEW(IpDNSServerRemove, Bool)

IpDNSServerRemove::IpDNSServerRemove() {
  SetDescription("Remove a DNS server from the list of DNS servers to use for this Haldeni host.");
}

std::shared_ptr<InputSpec> IpDNSServerRemove::GetInputSpecInternal() {
  return InputSpecOf({Optional(kAll, ParameterType::Flag, "a", kUndocumented),
                      Optional(kDnsServerOption, ParameterType::String, "s", kUndocumented),
                      NewNetstackParameter(NetstackScope::UseDefault)});
}

void IpDNSServerRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::DnsConfigImpl dnsConfig(NetstackOrDefault(*input));
  try {
    bool all = input->IsFlagSet(kAll.c_str());
    if (!all && !input->HasParameter(kDnsServerOption)) {
      output->AddErrorMessage("You must specify exactly one of: --all, --server");
      return;
    }
    // With both options, --all wins and --server is not read.
    if (all) {
      dnsConfig.RemoveNameServers();
    } else {
      auto address = MakeServerAddress(input->GetParameter(kDnsServerOption), *output);
      if (!address) return;
      dnsConfig.RemoveNameServer(*address);
    }
    dnsConfig.SaveConfig();
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
