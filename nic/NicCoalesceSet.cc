#include <cstdint>
#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "nic/PnicLookup.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kRxUsecs = "rx-usecs";
const std::string kRxMaxFrames = "rx-max-frames";
const std::string kTxUsecs = "tx-usecs";
const std::string kTxMaxFrames = "tx-max-frames";
const std::string kAdaptiveRx = "adaptive-rx";
const std::string kAdaptiveTx = "adaptive-tx";
const std::string kSampleInterval = "sample-interval";
}  // namespace

NETWORK_COMMAND_NEW(NicCoalesceSet, Bool)

NicCoalesceSet::NicCoalesceSet() { SetDescription("Set coalesce parameters on a nic"); }

std::shared_ptr<InputSpec> NicCoalesceSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(Shared::Ornic, "Name of ornic to set coalesce parameters."));
  spec->AddParameter(Optional(kRxUsecs, ParameterType::Int, "r",
                              "Number of microseconds driver to wait for RX before interrupting."));
  spec->AddParameter(
      Optional(kRxMaxFrames, ParameterType::Int, "R",
               "Maximum number of RX frames driver to process before interrupting."));
  spec->AddParameter(
      Optional(kTxUsecs, ParameterType::Int, "t",
               "Number of microseconds driver to wait for completed TX before interrupting."));
  spec->AddParameter(
      Optional(kTxMaxFrames, ParameterType::Int, "T",
               "Maximum number of completed TX frames driver to process before interrupting."));
  spec->AddParameter(Optional(kAdaptiveRx, ParameterType::Bool, "a",
                              "enable or disable adaptive RX algorithm in driver."));
  spec->AddParameter(Optional(kAdaptiveTx, ParameterType::Bool, "A",
                              "enable or disable adaptive TX algorithm in driver."));
  auto sampleInterval = Optional(kSampleInterval, ParameterType::Int, "i",
                                 "Packet rate sampling internal in seconds for the adaptive "
                                 "coalescing algorithm in driver.");
  auto range = ParameterConstraint::New(ParameterConstraintType::IntRange);
  range->SetIntRange(1, 3600);
  sampleInterval->SetConstraint(range);
  spec->AddParameter(sampleInterval);
  return spec;
}

void NicCoalesceSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = FindNamedPnic(networkInfo, name, *output);
    if (!pnic) return;
    HostCtl::Network::PnicCoalesceParams params;
    pnic->GetCoalesceParams(params);
    auto number = [&](std::string const& parameter, uint32_t& field) {
      TakeUint32(*input, parameter, field);
    };
    auto truth = [&](std::string const& parameter, bool& field) {
      if (input->HasParameter(parameter)) field = input->GetParameterBool(parameter);
    };
    number(kRxUsecs, params.rxMicroseconds);
    number(kRxMaxFrames, params.rxMaxFrames);
    number(kTxUsecs, params.txMicroseconds);
    number(kTxMaxFrames, params.txMaxFrames);
    truth(kAdaptiveRx, params.adaptiveRx);
    truth(kAdaptiveTx, params.adaptiveTx);
    number(kSampleInterval, params.sampleInterval);
    pnic->SetCoalesceParams(params);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
