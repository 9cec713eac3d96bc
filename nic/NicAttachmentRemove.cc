#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kTrunk = "trunk";
const std::string kBranch = "branch";
}  // namespace

NETWORK_COMMAND_NEW(NicAttachmentRemove, Bool)

NicAttachmentRemove::NicAttachmentRemove() {
  SetDescription("Detach a branch uplink from its trunk.");
}

std::shared_ptr<InputSpec> NicAttachmentRemove::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kTrunk, ParameterType::String, "t", "The name of the trunk uplink."),
       Required(kBranch, ParameterType::String, "b", "The name of the branch uplink.")});
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
