#include "nic/NicUp.h"

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

std::shared_ptr<NicUp> NicUp::New() { return std::shared_ptr<NicUp>(new NicUp()); }

NicUp::NicUp() { SetDescription("Bring up the specified network device."); }

NicUp::~NicUp() = default;

std::shared_ptr<InputSpec> NicUp::GetInputSpecInternal() {
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

std::shared_ptr<OutputSpec> NicUp::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicUp::ExecuteInternal(std::shared_ptr<Input> const& input,
                            std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kNicName);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto pnic = networkInfo.GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("There is no pnic with name " + name);
      return;
    }
    pnic->SetAdminUp(true);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
