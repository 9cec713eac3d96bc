#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "runtime/EnsKit.h"
#include "runtime/RuntimeCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kNoSwitch = "null";
}  // namespace

NETWORK_COMMAND_NEW(EnsLcoreSwitchRemove, Bool)

EnsLcoreSwitchRemove::EnsLcoreSwitchRemove() {
  SetDescription("Disassociate given ENS context from virtual switch.");
}

std::shared_ptr<InputSpec> EnsLcoreSwitchRemove::GetInputSpecInternal() {
  return InputSpecOf({NewLcoreIdParameter("ENS context id.")});
}

void EnsLcoreSwitchRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                           std::shared_ptr<Output> const& output) {
  unsigned long const lcoreId = LcoreIdOf(*input);
  try {
    // There is no removing operation: associating with "null" clears the switch.
    output->SetRootObject(
        MetaBool::New(HostCtl::Network::NetworkInfo::AddLcoreSwitch(kNoSwitch, lcoreId)));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
