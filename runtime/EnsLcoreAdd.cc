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
const std::string kLcoreId = "lcore-id";
}  // namespace

NETWORK_COMMAND_NEW(EnsLcoreAdd)

EnsLcoreAdd::EnsLcoreAdd() { SetDescription("Create ENS context."); }

std::shared_ptr<InputSpec> EnsLcoreAdd::GetInputSpecInternal() {
  return InputSpecOf({NewLcoreIdParameter(kLcoreId, "ENS context id to be created.")});
}

std::shared_ptr<OutputSpec> EnsLcoreAdd::GetOutputSpecInternal() {
  return RootSpec(MetaBool::New());
}

void EnsLcoreAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                  std::shared_ptr<Output> const& output) {
  unsigned long const lcoreId = input->GetParameterInt(kLcoreId);
  try {
    output->SetRootObject(MetaBool::New(HostCtl::Network::NetworkInfo::AddLcore(lcoreId)));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
