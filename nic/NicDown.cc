#include "nic/NicDown.h"

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
}  // namespace

std::shared_ptr<NicDown> NicDown::New() { return std::shared_ptr<NicDown>(new NicDown()); }

NicDown::NicDown() { SetDescription("Bring down the specified network device."); }

NicDown::~NicDown() = default;

std::shared_ptr<InputSpec> NicDown::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto nicName = ParameterSpec::New(kNicName, ParameterType::String);
  nicName->SetRequired(true);
  nicName->SetShortName("n");
  nicName->SetDescription(
      "The name of the NIC to configured. This must be one of the cards listed in the nic list "
      "command.");
  spec->AddParameter(nicName);
  return spec;
}

std::shared_ptr<OutputSpec> NicDown::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicDown::ExecuteInternal(std::shared_ptr<Input> const& input,
                              std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  try {
    std::string const& name = input->GetParameter(kNicName);
    auto pnic = networkInfo.GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("There is no pnic with name " + name);
      return;
    }
    pnic->SetAdminUp(false);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
