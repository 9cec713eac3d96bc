#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NetqueueKit.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kEnable = "enable";
}  // namespace

NETWORK_COMMAND_NEW(NicQueueLbStateSet, Bool)

NicQueueLbStateSet::NicQueueLbStateSet() {
  SetDescription("Enable/disable netqueue balancer on a NIC");
}

std::shared_ptr<InputSpec> NicQueueLbStateSet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::Ornic, "Name of ornic to change netqueue balancer state"),
                      Required(kEnable, ParameterType::Bool, "e", "Netqueue balancer state")});
}

void NicQueueLbStateSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  try {
    SetNetqueue(*input, *output, MissingPnicWords::InvalidName,
                [&](HostCtl::Network::PnicNetqueueInfo& info) {
                  info.balancerEnabled = input->GetParameterBool(kEnable);
                  info.applyBalancerState = true;
                  return true;
                });
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
