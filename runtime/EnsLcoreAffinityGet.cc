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

NETWORK_COMMAND_NEW(EnsLcoreAffinityGet, Int)

EnsLcoreAffinityGet::EnsLcoreAffinityGet() {
  SetDescription("Get the affinity for given ENS context.");
  SetDefaultOutputFormatter("simple");
}

std::shared_ptr<InputSpec> EnsLcoreAffinityGet::GetInputSpecInternal() {
  return InputSpecOf({NewLcoreIdParameter("ENS context id.")});
}

void EnsLcoreAffinityGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                          std::shared_ptr<Output> const& output) {
  unsigned long const lcoreId = LcoreIdOf(*input);
  try {
    output->SetRootObject(
        MetaInt::New(static_cast<long>(HostCtl::Network::NetworkInfo::GetLcoreAffinity(lcoreId))));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
