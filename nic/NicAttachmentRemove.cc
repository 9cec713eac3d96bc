#include "nic/NicAttachmentRemove.h"

#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kTrunk = "trunk";
const std::string kBranch = "branch";
}  // namespace

std::shared_ptr<NicAttachmentRemove> NicAttachmentRemove::New() {
  return std::shared_ptr<NicAttachmentRemove>(new NicAttachmentRemove());
}

NicAttachmentRemove::NicAttachmentRemove() {
  SetDescription("Detach a branch uplink from its trunk.");
}

NicAttachmentRemove::~NicAttachmentRemove() = default;

std::shared_ptr<InputSpec> NicAttachmentRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto trunk = ParameterSpec::New(kTrunk, ParameterType::String);
  trunk->SetRequired(true);
  trunk->SetShortName("t");
  trunk->SetDescription("The name of the trunk uplink.");
  spec->AddParameter(trunk);
  auto branch = ParameterSpec::New(kBranch, ParameterType::String);
  branch->SetRequired(true);
  branch->SetShortName("b");
  branch->SetDescription("The name of the branch uplink.");
  spec->AddParameter(branch);
  return spec;
}

std::shared_ptr<OutputSpec> NicAttachmentRemove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

// The branch's name goes to the library unchecked; the library judges it.
void NicAttachmentRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                          std::shared_ptr<Output> const& output) {
  std::string const& trunkName = input->GetParameter(kTrunk);
  std::string const& branchName = input->GetParameter(kBranch);
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto trunk = networkInfo.GetPnicByName(trunkName);
    if (!trunk) {
      output->AddErrorMessage("Invalid PNIC name " + trunkName);
      return;
    }
    trunk->RemoveAttachment(branchName);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Failed to detach uplink " + branchName + " from " + trunkName + ": " +
                            e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
