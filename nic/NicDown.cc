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

NETWORK_COMMAND_NEW(NicDown)

NicDown::NicDown() { SetDescription("Bring down the specified network device."); }

std::shared_ptr<InputSpec> NicDown::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(
      Shared::NicName,
      "The name of the NIC to configured. This must be one of the cards listed in the nic list "
      "command."));
  return spec;
}

std::shared_ptr<OutputSpec> NicDown::GetOutputSpecInternal() { return RootSpec(MetaBool::New()); }

void NicDown::ExecuteInternal(std::shared_ptr<Input> const& input,
                              std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  try {
    std::string const& name = input->GetParameter(kNicName);
    auto pnic = FindNamedPnic(networkInfo, name, *output, MissingPnicWords::NoPnic);
    if (!pnic) return;
    pnic->SetAdminUp(false);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
