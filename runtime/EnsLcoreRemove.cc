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

NETWORK_COMMAND_NEW(EnsLcoreRemove, Bool)

EnsLcoreRemove::EnsLcoreRemove() { SetDescription("Destroy ENS context."); }

std::shared_ptr<InputSpec> EnsLcoreRemove::GetInputSpecInternal() {
  return InputSpecOf({NewLcoreIdParameter("ENS context id to be destroyed.")});
}

void EnsLcoreRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  unsigned long const lcoreId = LcoreIdOf(*input);
  try {
    output->SetRootObject(MetaBool::New(HostCtl::Network::NetworkInfo::RemoveLcore(lcoreId)));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
