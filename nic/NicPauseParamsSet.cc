#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "nic/PnicLookup.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kAuto = "auto";
const std::string kRx = "rx";
const std::string kTx = "tx";
}  // namespace

NETWORK_COMMAND_NEW(NicPauseParamsSet, Bool)

NicPauseParamsSet::NicPauseParamsSet() { SetDescription("Set pause parameters for a NIC"); }

std::shared_ptr<InputSpec> NicPauseParamsSet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::NicName, "Name of NIC whose pause parameters should be set."),
       Optional(kAuto, ParameterType::Bool, "a", "Enable/disable auto negotiation."),
       Optional(kRx, ParameterType::Bool, "r", "Enable/disable pause RX flow control."),
       Optional(kTx, ParameterType::Bool, "t", "Enable/disable pause TX flow control.")});
}

void NicPauseParamsSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kNicName);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = FindNamedPnic(*networkInfo, name, *output, MissingPnicWords::NicNotFound);
    if (!pnic) return;
    HostCtl::Network::PnicPauseParams params;
    pnic->GetPauseParams(params);
    if (input->HasParameter(kAuto)) params.autoNegotiation = input->GetParameterBool(kAuto);
    if (input->HasParameter(kRx)) params.rx = input->GetParameterBool(kRx);
    if (input->HasParameter(kTx)) params.tx = input->GetParameterBool(kTx);
    pnic->SetPauseParams(params);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
