#include <string>

#include "hostctl/dns.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kIp = "ip";
const std::string kHostname = "hostname";
}  // namespace

NETWORK_COMMAND_NEW(IpHostsRemove, Bool)

IpHostsRemove::IpHostsRemove() {
  SetDescription("Remove association of IP addresses with host names.");
}

std::shared_ptr<InputSpec> IpHostsRemove::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kIp, ParameterType::String, "I", "The IP address (v4 or v6) of the host."),
       Required(kHostname, ParameterType::String, "H", "The name of the host.")});
}

void IpHostsRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                    std::shared_ptr<Output> const& output) {
  try {
    std::string const& ip = input->GetParameter(kIp);
    std::string const& hostname = input->GetParameter(kHostname);
    OrvkCtl::Network::HostsFile hostsFile;
    hostsFile.RemoveEntryFromUser(ip, hostname);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error removing etc host item:" + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
