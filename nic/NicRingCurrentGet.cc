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
}  // namespace

NETWORK_COMMAND_NEW(NicRingCurrentGet)

NicRingCurrentGet::NicRingCurrentGet() {
  SetDescription("Get current RX/TX ring buffer parameters of a NIC");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:" + kStructure,
                            kRx + "," + kRxMini + "," + kRxJumbo + "," + kTx);
}

std::shared_ptr<MetaStruct> NicRingCurrentGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kRx, MetaInt::New());
  result->SetField(kRxMini, MetaInt::New());
  result->SetField(kRxJumbo, MetaInt::New());
  result->SetField(kTx, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> NicRingCurrentGet::GetInputSpecInternal() {
  return InputSpecOf({Required(
      Shared::NicName,
      "The name of the NIC whose current RX/TX ring buffer parameters should be retrieved.")});
}

std::shared_ptr<OutputSpec> NicRingCurrentGet::GetOutputSpecInternal() {
  return RootSpec(GetOutputStructure());
}

void NicRingCurrentGet::ExecuteInternal(std::shared_ptr<Input> const& input,
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
    result->SetField(kRx, current.rx);
    result->SetField(kRxMini, current.rxMini);
    result->SetField(kRxJumbo, current.rxJumbo);
    result->SetField(kTx, current.tx);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
