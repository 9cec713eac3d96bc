#include <cstdint>
#include <string>

#include "hostctl/dvswitch.h"
#include "hostctl/network_info.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"
#include "vswitch/VswitchCommands.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kTimeout = "timeout";
const std::string kLagId = "lag-id";
const std::string kKds = "kds";
}  // namespace

NETWORK_COMMAND_NEW(LacpSetTimeout, Bool)

LacpSetTimeout::LacpSetTimeout() {
  SetDescription("Set long/short timeout for ornics in one LACP LAG");
}

std::shared_ptr<InputSpec> LacpSetTimeout::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kTimeout, ParameterType::Bool, "t",
                "Set long or short timeout: 1 for short timeout and 0 for long timeout."),
       Optional(Shared::NicName,
                "The nic name. If it is set, then only this ornic in the lag will be configured."),
       Required(kLagId, ParameterType::Int, "l", "The ID of LAG to be configured."),
       Required(kKds, ParameterType::String, "s", "The name of KDS.")});
}

void LacpSetTimeout::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    if (!input->HasParameter(kTimeout)) {
      output->AddErrorMessage("Timeout is empty");
      return;
    }
    bool shortTimeout = input->GetParameterBool(kTimeout);
    if (!input->HasParameter(kKds)) {
      output->AddErrorMessage("KDS name is empty");
      return;
    }
    auto dvs = HostCtl::Network::NetworkFactory::GetDVSwitchByName(input->GetParameter(kKds));
    if (!input->HasParameter(kLagId)) {
      output->AddErrorMessage("LAG ID is empty");
      return;
    }
    long lagId = input->GetParameterInt(kLagId);
    std::string nic;
    if (input->HasParameter(kNicName)) nic = input->GetParameter(kNicName);
    dvs->SetLacpTimeout(static_cast<uint32_t>(lagId), shortTimeout, nic);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
