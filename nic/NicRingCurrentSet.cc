#include "nic/NicRingCurrentSet.h"

#include <cstdint>
#include <memory>
#include <string>

#include "frame/ParamRange.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kNicName = "nic-name";
const std::string kRx = "rx";
const std::string kRxMini = "rx-mini";
const std::string kRxJumbo = "rx-jumbo";
const std::string kTx = "tx";

std::shared_ptr<ParameterSpec> Optional(std::string const& name, char const* shortName,
                                        char const* description) {
  auto parameter = ParameterSpec::New(name, ParameterType::Int);
  parameter->SetRequired(false);
  parameter->SetShortName(shortName);
  parameter->SetDescription(description);
  return parameter;
}
}  // namespace

std::shared_ptr<NicRingCurrentSet> NicRingCurrentSet::New() {
  return std::shared_ptr<NicRingCurrentSet>(new NicRingCurrentSet());
}

NicRingCurrentSet::NicRingCurrentSet() {
  SetDescription("Set current RX/TX ring buffer parameters of a NIC");
}

NicRingCurrentSet::~NicRingCurrentSet() = default;

std::shared_ptr<InputSpec> NicRingCurrentSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto nicName = ParameterSpec::New(kNicName, ParameterType::String);
  nicName->SetRequired(true);
  nicName->SetShortName("n");
  nicName->SetDescription(
      "The name of the NIC whose current RX/TX ring buffer parameters should be set.");
  spec->AddParameter(nicName);
  spec->AddParameter(Optional(kRx, "r", "Number of ring entries for the RX ring."));
  spec->AddParameter(Optional(kRxMini, "m", "Number of ring entries for the RX mini ring."));
  spec->AddParameter(Optional(kRxJumbo, "j", "Number of ring entries for the RX jumbo ring."));
  spec->AddParameter(Optional(kTx, "t", "Number of ring entries for the TX ring."));
  return spec;
}

std::shared_ptr<OutputSpec> NicRingCurrentSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicRingCurrentSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kNicName);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = networkInfo->GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("NIC with name " + name + " not found");
      return;
    }
    using HostCtl::Network::PnicRingParams;
    PnicRingParams params;
    bool fits = true;
    auto ring = [&](std::string const& parameter, uint8_t bit, uint32_t& field) {
      if (!input->HasParameter(parameter)) return;
      if (TakeParamUint32(*input, *output, parameter, field)) {
        params.mask |= bit;
      } else {
        fits = false;
      }
    };
    ring(kRx, PnicRingParams::MASK_RX, params.rx);
    ring(kRxMini, PnicRingParams::MASK_RX_MINI, params.rxMini);
    ring(kRxJumbo, PnicRingParams::MASK_RX_JUMBO, params.rxJumbo);
    ring(kTx, PnicRingParams::MASK_TX, params.tx);
    if (!fits) return;
    if (params.mask != 0) pnic->SetRingParams(params);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
