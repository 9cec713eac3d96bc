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

NETWORK_COMMAND_NEW(IpRouteIpv6Remove, Bool)

IpRouteIpv6Remove::IpRouteIpv6Remove() { SetDescription("Remove IPv6 route from the Orvik"); }

std::shared_ptr<InputSpec> IpRouteIpv6Remove::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kRouteNetwork, ParameterType::String, "n",
                "The Ipv6 address and prefix length of the network to remove the route from. "
                "Specify 'default' to indicate the default network."),
       Required(kRouteGateway, ParameterType::String, "g",
                "The Ipv6 address of the gateway through which a route to be removed"),
       NewNetstackParameter(NetstackScope::UseDefault)});
}

void IpRouteIpv6Remove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    RemoveRoute(*input, *output, RouteFamily::Ipv6);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
