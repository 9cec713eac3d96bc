#include "ip/IpNetstackInstanceRemove.h"

#include <string>

#include "hostctl/network_info.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kNetstack = "netstack";
}  // namespace

std::shared_ptr<IpNetstackInstanceRemove> IpNetstackInstanceRemove::New() {
  return std::shared_ptr<IpNetstackInstanceRemove>(new IpNetstackInstanceRemove());
}

IpNetstackInstanceRemove::IpNetstackInstanceRemove() {
  SetDescription("Remove a new Netstack Instance.");
}

IpNetstackInstanceRemove::~IpNetstackInstanceRemove() = default;

std::shared_ptr<InputSpec> IpNetstackInstanceRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto netstack = ParameterSpec::New(kNetstack, ParameterType::String);
  netstack->SetRequired(true);
  netstack->SetShortName("N");
  netstack->SetDescription("The network stack instance");
  spec->AddParameter(netstack);
  return spec;
}

std::shared_ptr<OutputSpec> IpNetstackInstanceRemove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void IpNetstackInstanceRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                               std::shared_ptr<Output> const& output) {
  try {
    std::string const& key = input->GetParameter(kNetstack);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    networkInfo.RemoveNetstackInstance(key, false);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to Remove Netstack Instance. Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
