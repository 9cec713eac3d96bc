#include "runtime/EnsLcoreRemove.h"

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

std::shared_ptr<EnsLcoreRemove> EnsLcoreRemove::New() { return std::make_shared<EnsLcoreRemove>(); }

EnsLcoreRemove::EnsLcoreRemove() { SetDescription("Destroy ENS context."); }

EnsLcoreRemove::~EnsLcoreRemove() = default;

std::shared_ptr<InputSpec> EnsLcoreRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(NewLcoreIdParameter(kLcoreId, "ENS context id to be destroyed."));
  return spec;
}

std::shared_ptr<OutputSpec> EnsLcoreRemove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void EnsLcoreRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  unsigned long const lcoreId = input->GetParameterInt(kLcoreId);
  try {
    output->SetRootObject(MetaBool::New(HostCtl::Network::NetworkInfo::RemoveLcore(lcoreId)));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
