#include <string>

#include "hostctl/network_info.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kIpv6Enabled = "IPv6 Enabled";
}  // namespace

NETWORK_COMMAND_NEW(IpGet, Struct)

IpGet::IpGet() {
  SetDescription("Get global IP settings");
  SetDefaultOutputFormatter("simple");
}

std::shared_ptr<MetaStruct> IpGet::GetOutputStructure() {
  auto result = MetaStruct::New("IPInfo");
  result->SetField(kIpv6Enabled, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> IpGet::GetInputSpecInternal() { return InputSpec::New(); }

void IpGet::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                            std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  try {
    auto result = GetOutputStructure();
    result->SetField(kIpv6Enabled, networkInfo.IsOrvkIpv6Enabled());
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
