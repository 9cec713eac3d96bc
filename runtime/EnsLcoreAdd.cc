#include "runtime/EnsLcoreAdd.h"

#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "runtime/EnsKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kLcoreId = "lcore-id";
}  // namespace

std::shared_ptr<EnsLcoreAdd> EnsLcoreAdd::New() { return std::make_shared<EnsLcoreAdd>(); }

EnsLcoreAdd::EnsLcoreAdd() { SetDescription("Create ENS context."); }

EnsLcoreAdd::~EnsLcoreAdd() = default;

std::shared_ptr<InputSpec> EnsLcoreAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(NewLcoreIdParameter(kLcoreId, "ENS context id to be created."));
  return spec;
}

std::shared_ptr<OutputSpec> EnsLcoreAdd::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
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
