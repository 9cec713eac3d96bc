#include "nic/NicNegotiationRestart.h"

#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kOrnic = "ornic";
}  // namespace

std::shared_ptr<NicNegotiationRestart> NicNegotiationRestart::New() {
  return std::shared_ptr<NicNegotiationRestart>(new NicNegotiationRestart());
}

NicNegotiationRestart::NicNegotiationRestart() {
  SetDescription("Restart N-Way negotiation on a nic");
}

NicNegotiationRestart::~NicNegotiationRestart() = default;

std::shared_ptr<InputSpec> NicNegotiationRestart::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("Name of ornic to restart negotiation");
  spec->AddParameter(ornic);
  return spec;
}

std::shared_ptr<OutputSpec> NicNegotiationRestart::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicNegotiationRestart::ExecuteInternal(std::shared_ptr<Input> const& input,
                                            std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = networkInfo.GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("Pnic with name " + name + " not found");
      return;
    }
    pnic->RestartNegotiation();
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
