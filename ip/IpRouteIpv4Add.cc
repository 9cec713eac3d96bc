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

NETWORK_COMMAND_NEW(IpRouteIpv4Add, Bool)

IpRouteIpv4Add::IpRouteIpv4Add() { SetDescription("Add IPv4 route to the Orvik."); }

std::shared_ptr<InputSpec> IpRouteIpv4Add::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kRouteNetwork, ParameterType::String, "n",
                "The Ipv4 address and prefix length of the network to add the route to. Specify "
                "'default' to indicate the default network."),
       Required(kRouteGateway, ParameterType::String, "g",
                "The Ipv4 address of the gateway through which a route to be added."),
       NewNetstackParameter(NetstackScope::UseDefault)});
}

void IpRouteIpv4Add::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    AddRoute(*input, *output, RouteFamily::Ipv4);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
