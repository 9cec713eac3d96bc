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
const std::string kTx = "tx";
const std::string kRx = "rx";
const std::string kNum = "num";
}  // namespace

NETWORK_COMMAND_NEW(NicQueueCountSet, Bool)

NicQueueCountSet::NicQueueCountSet() { SetDescription("Set number of netqueues on a nic"); }

std::shared_ptr<InputSpec> NicQueueCountSet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::Ornic, "Name of ornic to set netqueue count."),
                      Optional(kTx, ParameterType::Bool, "t", "Tx netqueue to set count."),
                      Optional(kRx, ParameterType::Bool, "r", "Rx netqueue to set count."),
                      Required(kNum, ParameterType::Int, "q", "Number of queues to set.")});
}

void NicQueueCountSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                       std::shared_ptr<Output> const& output) {
  try {
    SetNetqueue(*input, *output, MissingPnicWords::NotFound,
                [&](HostCtl::Network::PnicNetqueueInfo& info) {
                  // Only the presence of --tx and --rx counts, not their value.
                  bool const tx = input->HasParameter(kTx);
                  bool const rx = input->HasParameter(kRx);
                  long const num = input->GetParameterInt(kNum);
                  if (tx) {
                    info.txQueueCount = static_cast<uint32_t>(num);
                    info.applyTxQueueCount = true;
                  }
                  if (rx) {
                    info.rxQueueCount = static_cast<uint32_t>(num);
                    info.applyRxQueueCount = true;
                  }
                  return info.applyTxQueueCount || info.applyRxQueueCount;
                });
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
