#include "ip/IpRouteIpv6Remove.h"

#include <string>

#include "hostctl/routing.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kNetwork = "network";
const std::string kGateway = "gateway";
}  // namespace

std::shared_ptr<IpRouteIpv6Remove> IpRouteIpv6Remove::New() {
  return std::shared_ptr<IpRouteIpv6Remove>(new IpRouteIpv6Remove());
}

IpRouteIpv6Remove::IpRouteIpv6Remove() { SetDescription("Remove IPv6 route from the Orvik"); }

IpRouteIpv6Remove::~IpRouteIpv6Remove() = default;

std::shared_ptr<InputSpec> IpRouteIpv6Remove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto network = ParameterSpec::New(kNetwork, ParameterType::String);
  network->SetRequired(true);
  network->SetShortName("n");
  network->SetDescription(
      "The Ipv6 address and prefix length of the network to remove the route from. Specify "
      "'default' to indicate the default network.");
  spec->AddParameter(network);
  auto gateway = ParameterSpec::New(kGateway, ParameterType::String);
  gateway->SetRequired(true);
  gateway->SetShortName("g");
  gateway->SetDescription("The Ipv6 address of the gateway through which a route to be removed");
  spec->AddParameter(gateway);
  spec->AddParameter(NewNetstackParameter(NetstackScope::UseDefault));
  return spec;
}

std::shared_ptr<OutputSpec> IpRouteIpv6Remove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void IpRouteIpv6Remove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  using OrvkCtl::Network::RoutingInfoImpl;
  try {
    RoutingInfoImpl routingInfo(kDefaultNetstackKey);
    // Both addresses are read before the instance is chosen.
    HostCtl::Network::Ipv6Address gateway(input->GetParameter(kGateway));
    std::string const& text = input->GetParameter(kNetwork);
    HostCtl::Network::Ipv6Network network = text == "default" ? RoutingInfoImpl::DEFAULT_IPV6_ROUTE
                                                              : HostCtl::Network::Ipv6Network(text);
    if (IsNetstackGiven(*input)) {
      routingInfo.SetNetstackInstanceKey(NetstackOrDefault(*input));
    }
    if (!(network == RoutingInfoImpl::DEFAULT_IPV6_ROUTE)) {
      routingInfo.RemoveIpv6OrvikRoute(network, gateway);
    } else if (gateway == routingInfo.GetIpv6OrvikDefaultGateway() ||
               gateway == routingInfo.GetIpv6OrvikConfigDefaultGateway()) {
      // The default route goes with the default gateway.
      routingInfo.SetIpv6OrvikDefaultGateway(HostCtl::Network::Ipv6Address());
    } else {
      output->AddErrorMessage(gateway.GetStringAddress() + " is not a default route.");
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
