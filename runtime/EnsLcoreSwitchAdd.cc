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
const std::string kSwitch = "switch";
}  // namespace

NETWORK_COMMAND_NEW(EnsLcoreSwitchAdd, Bool)

EnsLcoreSwitchAdd::EnsLcoreSwitchAdd() {
  SetDescription("Associate given ENS context with given switch.");
}

std::shared_ptr<InputSpec> EnsLcoreSwitchAdd::GetInputSpecInternal() {
  return InputSpecOf({NewLcoreIdParameter("ENS context id."),
                      NewEnsParameter(kSwitch, "s", ParameterType::String, "Switch name.")});
}

void EnsLcoreSwitchAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  unsigned long const lcoreId = LcoreIdOf(*input);
  std::string const& switchName = input->GetParameter(kSwitch);
  try {
    output->SetRootObject(
        MetaBool::New(HostCtl::Network::NetworkInfo::AddLcoreSwitch(switchName, lcoreId)));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
