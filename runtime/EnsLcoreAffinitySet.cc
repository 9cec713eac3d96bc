#include <cstdint>
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
const std::string kAffinity = "affinity";
}  // namespace

NETWORK_COMMAND_NEW(EnsLcoreAffinitySet, Bool)

EnsLcoreAffinitySet::EnsLcoreAffinitySet() {
  SetDescription("Set affinity for given ENS context.");
}

std::shared_ptr<InputSpec> EnsLcoreAffinitySet::GetInputSpecInternal() {
  return InputSpecOf({NewLcoreIdParameter("ENS context id."),
                      NewEnsParameter(kAffinity, "a", ParameterType::Int, "Numa node affinity.")});
}

void EnsLcoreAffinitySet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                          std::shared_ptr<Output> const& output) {
  unsigned long const lcoreId = LcoreIdOf(*input);
  long const affinity = input->GetParameterInt(kAffinity);
  try {
    output->SetRootObject(MetaBool::New(HostCtl::Network::NetworkInfo::SetLcoreAffinity(
        static_cast<unsigned int>(affinity), lcoreId)));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
