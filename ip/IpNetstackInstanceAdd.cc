#include <string>

#include "hostctl/netstack.h"
#include "hostctl/network_info.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kDisabled = "disabled";
// The settings of a new instance.
constexpr uint32_t kNewMaxConnections = 11000;
const std::string kNewCcAlgorithm = "newreno";
constexpr bool kNewIpv6Enabled = true;
constexpr uint32_t kNewFlags = 2;
const std::string kNewEcnStatus = "enabled";
}  // namespace

NETWORK_COMMAND_NEW(IpNetstackInstanceAdd, Bool)

IpNetstackInstanceAdd::IpNetstackInstanceAdd() { SetDescription("Add a new Netstack Instance."); }

std::shared_ptr<InputSpec> IpNetstackInstanceAdd::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::Netstack, "The network stack instance"),
                      Optional(kDisabled, ParameterType::Flag, "d",
                               "Create the netstack instance only in config i.e. in disabled "
                               "state. Does not create in kernel.")});
}

void IpNetstackInstanceAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                            std::shared_ptr<Output> const& output) {
  try {
    std::string const& key = input->GetParameter(kNetstack);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    OrvkCtl::Network::NetstackInstanceImpl instance(key, kNewMaxConnections, kNewCcAlgorithm,
                                                    kNewIpv6Enabled, kNewFlags, kNewEcnStatus);
    networkInfo.AddNetstackInstance(&instance, input->HasParameter(kDisabled));
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to add Netstack Instance. Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
