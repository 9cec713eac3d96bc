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

NETWORK_COMMAND_NEW(NicDown, Bool)

NicDown::NicDown() { SetDescription("Bring down the specified network device."); }

std::shared_ptr<InputSpec> NicDown::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::NicName, kConfiguredNicHelp)});
}

void NicDown::ExecuteInternal(std::shared_ptr<Input> const& input,
                              std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  try {
    SetNamedPnicAdminUp(networkInfo, *input, *output, false);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
