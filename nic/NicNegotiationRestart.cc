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

NETWORK_COMMAND_NEW(NicNegotiationRestart, Bool)

NicNegotiationRestart::NicNegotiationRestart() {
  SetDescription("Restart N-Way negotiation on a nic");
}

std::shared_ptr<InputSpec> NicNegotiationRestart::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::Ornic, "Name of ornic to restart negotiation")});
}

void NicNegotiationRestart::ExecuteInternal(std::shared_ptr<Input> const& input,
                                            std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = FindNamedPnic(networkInfo, name, *output);
    if (!pnic) return;
    pnic->RestartNegotiation();
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
