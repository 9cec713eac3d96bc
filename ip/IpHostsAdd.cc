#include "ip/IpHostsAdd.h"

#include <string>
#include <vector>

#include "hostctl/dns.h"
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

std::shared_ptr<IpHostsAdd> IpHostsAdd::New() { return std::make_shared<IpHostsAdd>(); }

IpHostsAdd::IpHostsAdd() { SetDescription("Add association of IP addresses with host names."); }

IpHostsAdd::~IpHostsAdd() = default;

std::shared_ptr<InputSpec> IpHostsAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ip = ParameterSpec::New(kIp, ParameterType::String);
  ip->SetRequired(true);
  ip->SetShortName("I");
  ip->SetDescription("The IP address (v4 or v6) of the host.");
  spec->AddParameter(ip);
  auto hostname = ParameterSpec::New(kHostname, ParameterType::String);
  hostname->SetRequired(true);
  hostname->SetShortName("H");
  hostname->SetDescription("The name of the host.");
  spec->AddParameter(hostname);
  auto alias = ParameterSpec::New(kAlias, ParameterType::StringList);
  alias->SetRequired(false);
  alias->SetShortName("A");
  alias->SetDescription("The list of aliases of the host.");
  spec->AddParameter(alias);
  auto comment = ParameterSpec::New(kComment, ParameterType::String);
  comment->SetRequired(false);
  comment->SetShortName("C");
  comment->SetDescription("Comment line of this item");
  spec->AddParameter(comment);
  return spec;
}

std::shared_ptr<OutputSpec> IpHostsAdd::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
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
