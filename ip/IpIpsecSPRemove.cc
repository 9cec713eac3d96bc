#include <string>

#include "hostctl/ipsec.h"
#include "ip/IpCommands.h"
#include "ip/IpsecKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kSpName = "sp-name";
const std::string kRemoveAll = "remove-all";
}  // namespace

NETWORK_COMMAND_NEW(IpIpsecSPRemove, Bool)

IpIpsecSPRemove::IpIpsecSPRemove() { SetDescription("Operation to remove Security Policy"); }

std::shared_ptr<InputSpec> IpIpsecSPRemove::GetInputSpecInternal() {
  return InputSpecOf({NewIpsecParameter(kSpName, "n", ParameterType::String, false,
                                        "Name for the Security Policy to be removed."),
                      NewIpsecParameter(kRemoveAll, "a", ParameterType::Flag, false,
                                        "Set to remove all Security Policys")});
}

void IpIpsecSPRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::IpSecConfigImpl config;
    bool hasName = input->HasParameter(kSpName);
    bool all = input->IsFlagSet(kRemoveAll);
    if (hasName && !all) {
      config.RemoveSPDConfig(input->GetParameter(kSpName));
    } else if (!hasName && all) {
      config.FlushSPDConfig();
    } else {
      // Reported, and the command still ends with true.
      output->AddErrorMessage("You should specify exactly one of : --remove-all, --sa-name");
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
