#include <string>

#include "hostctl/lib.h"
#include "ip/IpCommands.h"
#include "ip/NetstackOption.h"
#include "ip/RouteKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(IpRouteIpv4Remove, Bool)

IpRouteIpv4Remove::IpRouteIpv4Remove() { SetDescription("Remove IPv4 route"); }

std::shared_ptr<InputSpec> IpRouteIpv4Remove::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kRouteNetwork, ParameterType::String, "n",
                "The Ipv4 address and prefix length of the network to remove the route from. "
                "Specify 'default' to indicate the default network."),
       Required(kRouteGateway, ParameterType::String, "g",
                "The Ipv4 address of the gateway through which a route to be removed"),
       NewNetstackParameter(NetstackScope::UseDefault)});
}

void IpRouteIpv4Remove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    RemoveRoute(*input, *output, RouteFamily::Ipv4);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
