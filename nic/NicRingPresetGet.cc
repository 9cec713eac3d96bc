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
const std::string kStructure = "RingInfo";
const std::string kRx = "RX";
const std::string kRxMini = "RX Mini";
const std::string kRxJumbo = "RX Jumbo";
const std::string kTx = "TX";
const std::string kMaxRx = "Max RX";
const std::string kMaxRxMini = "Max RX Mini";
const std::string kMaxRxJumbo = "Max RX Jumbo";
const std::string kMaxTx = "Max TX";
}  // namespace

NETWORK_COMMAND_NEW(NicRingPresetGet)

NicRingPresetGet::NicRingPresetGet() {
  SetDescription("Get preset maximums for RX/TX ring buffer parameters of a NIC.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:" + kStructure,
                            kMaxRx + "," + kMaxRxMini + "," + kMaxRxJumbo + "," + kMaxTx);
}

std::shared_ptr<MetaStruct> NicRingPresetGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kRx, MetaInt::New());
  result->SetField(kRxMini, MetaInt::New());
  result->SetField(kRxJumbo, MetaInt::New());
  result->SetField(kTx, MetaInt::New());
  result->SetField(kMaxRx, MetaInt::New());
  result->SetField(kMaxRxMini, MetaInt::New());
  result->SetField(kMaxRxJumbo, MetaInt::New());
  result->SetField(kMaxTx, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> NicRingPresetGet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::NicName,
                               "The name of the NIC whose preset maximums for RX/TX ring buffer "
                               "parameters should be retrieved.")});
}

std::shared_ptr<OutputSpec> NicRingPresetGet::GetOutputSpecInternal() {
  return RootSpec(GetOutputStructure());
}

void NicRingPresetGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                       std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kNicName);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = FindNamedPnic(*networkInfo, name, *output, MissingPnicWords::NicNotFound);
    if (!pnic) return;
    HostCtl::Network::PnicRingParams preset;
    HostCtl::Network::PnicRingParams current;
    pnic->GetRingParams(preset, current);
    auto result = GetOutputStructure();
    // Only the maximums are shown, under both names of each ring.
    result->SetField(kRx, preset.rx);
    result->SetField(kRxMini, preset.rxMini);
    result->SetField(kRxJumbo, preset.rxJumbo);
    result->SetField(kTx, preset.tx);
    result->SetField(kMaxRx, preset.rx);
    result->SetField(kMaxRxMini, preset.rxMini);
    result->SetField(kMaxRxJumbo, preset.rxJumbo);
    result->SetField(kMaxTx, preset.tx);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
