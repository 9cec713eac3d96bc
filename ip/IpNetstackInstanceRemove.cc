#include <string>

#include "hostctl/network_info.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(IpNetstackInstanceRemove, Bool)

IpNetstackInstanceRemove::IpNetstackInstanceRemove() {
  SetDescription("Remove a new Netstack Instance.");
}

std::shared_ptr<InputSpec> IpNetstackInstanceRemove::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::Netstack, "The network stack instance")});
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
