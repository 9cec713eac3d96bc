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
const std::string kMaxLcores = "maxlcores";
}  // namespace

NETWORK_COMMAND_NEW(EnsMaxlcoresSet, Bool)

EnsMaxlcoresSet::EnsMaxlcoresSet() { SetDescription("Set the maximum number of ENS contexts."); }

std::shared_ptr<InputSpec> EnsMaxlcoresSet::GetInputSpecInternal() {
  return InputSpecOf({NewEnsParameter(kMaxLcores, "n", ParameterType::Int,
                                      "Number of maximum ENS contexts to be assigned.")});
}

void EnsMaxlcoresSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  unsigned long const maximum = input->GetParameterInt(kMaxLcores);
  try {
    output->SetRootObject(MetaBool::New(HostCtl::Network::NetworkInfo::SetMaxLcores(maximum)));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
