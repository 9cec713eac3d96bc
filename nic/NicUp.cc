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

NETWORK_COMMAND_NEW(NicUp)

NicUp::NicUp() { SetDescription("Bring up the specified network device."); }

std::shared_ptr<InputSpec> NicUp::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(
      Shared::NicName,
      "The name of the NIC to configured. This must be one of the cards listed in the nic list "
      "command."));
  return spec;
}

std::shared_ptr<OutputSpec> NicUp::GetOutputSpecInternal() { return RootSpec(MetaBool::New()); }

void NicUp::ExecuteInternal(std::shared_ptr<Input> const& input,
                            std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kNicName);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = FindNamedPnic(networkInfo, name, *output, MissingPnicWords::NoPnic);
    if (!pnic) return;
    pnic->SetAdminUp(true);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
