#include "vswitch/LacpSetTimeout.h"

#include <cstdint>
#include <string>

#include "frame/ParamRange.h"
#include "hostctl/dvswitch.h"
#include "hostctl/network_info.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kTimeout = "timeout";
const std::string kNicName = "nic-name";
const std::string kLagId = "lag-id";
const std::string kKds = "kds";
}  // namespace

std::shared_ptr<LacpSetTimeout> LacpSetTimeout::New() {
  return std::shared_ptr<LacpSetTimeout>(new LacpSetTimeout());
}

LacpSetTimeout::LacpSetTimeout() {
  SetDescription("Set long/short timeout for ornics in one LACP LAG");
}

LacpSetTimeout::~LacpSetTimeout() = default;

std::shared_ptr<InputSpec> LacpSetTimeout::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto timeout = ParameterSpec::New(kTimeout, ParameterType::Bool);
  timeout->SetRequired(true);
  timeout->SetShortName("t");
  timeout->SetDescription("Set long or short timeout: 1 for short timeout and 0 for long timeout.");
  spec->AddParameter(timeout);
  auto nic = ParameterSpec::New(kNicName, ParameterType::String);
  nic->SetRequired(false);
  nic->SetShortName("n");
  nic->SetDescription(
      "The nic name. If it is set, then only this ornic in the lag will be configured.");
  spec->AddParameter(nic);
  auto lag = ParameterSpec::New(kLagId, ParameterType::Int);
  lag->SetRequired(true);
  lag->SetShortName("l");
  lag->SetDescription("The ID of LAG to be configured.");
  spec->AddParameter(lag);
  auto kds = ParameterSpec::New(kKds, ParameterType::String);
  kds->SetRequired(true);
  kds->SetShortName("s");
  kds->SetDescription("The name of KDS.");
  spec->AddParameter(kds);
  return spec;
}

std::shared_ptr<OutputSpec> LacpSetTimeout::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void LacpSetTimeout::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    if (!input->HasParameter(kTimeout)) {
      output->AddErrorMessage("Timeout is empty");
      return;
    }
    bool shortTimeout = input->GetParameterBool(kTimeout);
    if (!input->HasParameter(kKds)) {
      output->AddErrorMessage("KDS name is empty");
      return;
    }
    auto dvs = HostCtl::Network::NetworkFactory::GetDVSwitchByName(input->GetParameter(kKds));
    if (!input->HasParameter(kLagId)) {
      output->AddErrorMessage("LAG ID is empty");
      return;
    }
    long lagId = input->GetParameterInt(kLagId);
    std::string nic;
    if (input->HasParameter(kNicName)) nic = input->GetParameter(kNicName);
    if (!CheckParamUint32(*output, kLagId, lagId)) return;
    dvs->SetLacpTimeout(static_cast<uint32_t>(lagId), shortTimeout, nic);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
