#include "nic/NicPauseParamsSet.h"

#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kNicName = "nic-name";
const std::string kAuto = "auto";
const std::string kRx = "rx";
const std::string kTx = "tx";

std::shared_ptr<ParameterSpec> Optional(std::string const& name, char const* shortName,
                                        char const* description) {
  auto parameter = ParameterSpec::New(name, ParameterType::Bool);
  parameter->SetRequired(false);
  parameter->SetShortName(shortName);
  parameter->SetDescription(description);
  return parameter;
}
}  // namespace

std::shared_ptr<NicPauseParamsSet> NicPauseParamsSet::New() {
  return std::shared_ptr<NicPauseParamsSet>(new NicPauseParamsSet());
}

NicPauseParamsSet::NicPauseParamsSet() { SetDescription("Set pause parameters for a NIC"); }

NicPauseParamsSet::~NicPauseParamsSet() = default;

std::shared_ptr<InputSpec> NicPauseParamsSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto nicName = ParameterSpec::New(kNicName, ParameterType::String);
  nicName->SetRequired(true);
  nicName->SetShortName("n");
  nicName->SetDescription("Name of NIC whose pause parameters should be set.");
  spec->AddParameter(nicName);
  spec->AddParameter(Optional(kAuto, "a", "Enable/disable auto negotiation."));
  spec->AddParameter(Optional(kRx, "r", "Enable/disable pause RX flow control."));
  spec->AddParameter(Optional(kTx, "t", "Enable/disable pause TX flow control."));
  return spec;
}

std::shared_ptr<OutputSpec> NicPauseParamsSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicPauseParamsSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kNicName);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = networkInfo->GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("NIC with name " + name + " not found");
      return;
    }
    HostCtl::Network::PnicPauseParams params;
    pnic->GetPauseParams(params);
    if (input->HasParameter(kAuto)) params.autoNegotiation = input->GetParameterBool(kAuto);
    if (input->HasParameter(kRx)) params.rx = input->GetParameterBool(kRx);
    if (input->HasParameter(kTx)) params.tx = input->GetParameterBool(kTx);
    pnic->SetPauseParams(params);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
