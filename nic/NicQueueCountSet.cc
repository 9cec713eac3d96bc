#include "nic/NicQueueCountSet.h"

#include <memory>
#include <string>

#include "frame/ParamRange.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NetqueueKit.h"
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

std::shared_ptr<NicQueueCountSet> NicQueueCountSet::New() {
  return std::make_shared<NicQueueCountSet>();
}

NicQueueCountSet::NicQueueCountSet() { SetDescription("Set number of netqueues on a nic"); }

NicQueueCountSet::~NicQueueCountSet() = default;

std::shared_ptr<InputSpec> NicQueueCountSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnicParameter, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("Name of ornic to set netqueue count.");
  spec->AddParameter(ornic);
  auto tx = ParameterSpec::New(kTx, ParameterType::Bool);
  tx->SetRequired(false);
  tx->SetShortName("t");
  tx->SetDescription("Tx netqueue to set count.");
  spec->AddParameter(tx);
  auto rx = ParameterSpec::New(kRx, ParameterType::Bool);
  rx->SetRequired(false);
  rx->SetShortName("r");
  rx->SetDescription("Rx netqueue to set count.");
  spec->AddParameter(rx);
  auto num = ParameterSpec::New(kNum, ParameterType::Int);
  num->SetRequired(true);
  num->SetShortName("q");
  num->SetDescription("Number of queues to set.");
  spec->AddParameter(num);
  return spec;
}

std::shared_ptr<OutputSpec> NicQueueCountSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicQueueCountSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                       std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnicParameter);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = FindNamedPnic(*networkInfo, name, *output, MissingPnicWords::NotFound);
    if (!pnic) return;
    // Only the presence of --tx and --rx counts, not their value.
    bool const tx = input->HasParameter(kTx);
    bool const rx = input->HasParameter(kRx);
    long const num = input->GetParameterInt(kNum);
    if ((tx || rx) && !CheckParamUint32(*output, kNum, num)) return;
    HostCtl::Network::PnicNetqueueInfo info;
    if (tx) {
      info.txQueueCount = static_cast<uint32_t>(num);
      info.applyTxQueueCount = true;
    }
    if (rx) {
      info.rxQueueCount = static_cast<uint32_t>(num);
      info.applyRxQueueCount = true;
    }
    if (info.applyTxQueueCount || info.applyRxQueueCount) pnic->SetNetqueueInfo(info);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
