#include <string>
#include <vector>

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
const std::string kAlias = "alias";
const std::string kComment = "comment";
}  // namespace

NETWORK_COMMAND_NEW(IpHostsAdd, Bool)

IpHostsAdd::IpHostsAdd() { SetDescription("Add association of IP addresses with host names."); }

std::shared_ptr<InputSpec> IpHostsAdd::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kIp, ParameterType::String, "I", "The IP address (v4 or v6) of the host."),
       Required(kHostname, ParameterType::String, "H", "The name of the host."),
       Optional(kAlias, ParameterType::StringList, "A", "The list of aliases of the host."),
       Optional(kComment, ParameterType::String, "C", "Comment line of this item")});
}

void IpHostsAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                 std::shared_ptr<Output> const& output) {
  try {
    std::string const& ip = input->GetParameter(kIp);
    std::string const& hostname = input->GetParameter(kHostname);
    std::vector<std::string> aliases;
    if (input->HasParameter(kAlias)) input->GetParameterList(kAlias.c_str(), aliases);
    std::string comment;
    if (input->HasParameter(kComment)) comment = input->GetParameter(kComment);
    OrvkCtl::Network::HostsFile hostsFile;
    hostsFile.AddEntryFromUser(ip, hostname, aliases, comment);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error adding etc host item:" + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
