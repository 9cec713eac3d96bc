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
const std::string kRx = "rx";
const std::string kRxMini = "rx-mini";
const std::string kRxJumbo = "rx-jumbo";
const std::string kTx = "tx";
}  // namespace

NETWORK_COMMAND_NEW(NicRingCurrentSet, Bool)

NicRingCurrentSet::NicRingCurrentSet() {
  SetDescription("Set current RX/TX ring buffer parameters of a NIC");
}

std::shared_ptr<InputSpec> NicRingCurrentSet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::NicName,
                "The name of the NIC whose current RX/TX ring buffer parameters should be set."),
       Optional(kRx, ParameterType::Int, "r", "Number of ring entries for the RX ring."),
       Optional(kRxMini, ParameterType::Int, "m", "Number of ring entries for the RX mini ring."),
       Optional(kRxJumbo, ParameterType::Int, "j", "Number of ring entries for the RX jumbo ring."),
       Optional(kTx, ParameterType::Int, "t", "Number of ring entries for the TX ring.")});
}

void NicRingCurrentSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kNicName);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = FindNamedPnic(*networkInfo, name, *output, MissingPnicWords::NicNotFound);
    if (!pnic) return;
    using HostCtl::Network::PnicRingParams;
    PnicRingParams params;
    auto ring = [&](std::string const& parameter, uint8_t bit, uint32_t& field) {
      if (TakeUint32(*input, parameter, field)) params.mask |= bit;
    };
    ring(kRx, PnicRingParams::MASK_RX, params.rx);
    ring(kRxMini, PnicRingParams::MASK_RX_MINI, params.rxMini);
    ring(kRxJumbo, PnicRingParams::MASK_RX_JUMBO, params.rxJumbo);
    ring(kTx, PnicRingParams::MASK_TX, params.tx);
    if (params.mask != 0) pnic->SetRingParams(params);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
