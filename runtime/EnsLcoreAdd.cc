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

NETWORK_COMMAND_NEW(EnsLcoreAdd, Bool)

EnsLcoreAdd::EnsLcoreAdd() { SetDescription("Create ENS context."); }

std::shared_ptr<InputSpec> EnsLcoreAdd::GetInputSpecInternal() {
  return InputSpecOf({NewLcoreIdParameter("ENS context id to be created.")});
}

void EnsLcoreAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                  std::shared_ptr<Output> const& output) {
  unsigned long const lcoreId = LcoreIdOf(*input);
  try {
    output->SetRootObject(MetaBool::New(HostCtl::Network::NetworkInfo::AddLcore(lcoreId)));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
