#include <string>

#include "hostctl/network_info.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kIpv6Enabled = "ipv6-enabled";
}  // namespace

NETWORK_COMMAND_NEW(IpSet, Bool)

IpSet::IpSet() { SetDescription("Update global IP settings"); }

std::shared_ptr<InputSpec> IpSet::GetInputSpecInternal() {
  return InputSpecOf({Optional(kIpv6Enabled, ParameterType::Bool, "e",
                               "Enable or disable IPv6 (Reboot Required)")});
}

void IpSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                            std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  try {
    if (input->HasParameter(kIpv6Enabled)) {
      networkInfo.SetOrvkIpv6Enabled(input->GetParameterBool(kIpv6Enabled));
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
