#include "ip/IpSet.h"

#include <string>

#include "hostctl/network_info.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kIpv6Enabled = "ipv6-enabled";
}  // namespace

std::shared_ptr<IpSet> IpSet::New() { return std::shared_ptr<IpSet>(new IpSet()); }

IpSet::IpSet() { SetDescription("Update global IP settings"); }

IpSet::~IpSet() = default;

std::shared_ptr<InputSpec> IpSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ipv6 = ParameterSpec::New(kIpv6Enabled, ParameterType::Bool);
  ipv6->SetRequired(false);
  ipv6->SetShortName("e");
  ipv6->SetDescription("Enable or disable IPv6 (Reboot Required)");
  spec->AddParameter(ipv6);
  return spec;
}

std::shared_ptr<OutputSpec> IpSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void IpSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                            std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  try {
    if (input->HasParameter(kIpv6Enabled)) {
      networkInfo.SetOrvkIpv6Enabled(input->GetParameterBool(kIpv6Enabled));
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
