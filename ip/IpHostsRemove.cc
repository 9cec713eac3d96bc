#include "ip/IpHostsRemove.h"

#include <string>

#include "hostctl/dns.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kIp = "ip";
const std::string kHostname = "hostname";
}  // namespace

std::shared_ptr<IpHostsRemove> IpHostsRemove::New() { return std::make_shared<IpHostsRemove>(); }

IpHostsRemove::IpHostsRemove() {
  SetDescription("Remove association of IP addresses with host names.");
}

IpHostsRemove::~IpHostsRemove() = default;

std::shared_ptr<InputSpec> IpHostsRemove::GetInputSpecInternal() {
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
  return spec;
}

std::shared_ptr<OutputSpec> IpHostsRemove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
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
