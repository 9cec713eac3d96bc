#include "ip/IpRouteIpv4Remove.h"

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

std::shared_ptr<IpRouteIpv4Remove> IpRouteIpv4Remove::New() {
  return std::shared_ptr<IpRouteIpv4Remove>(new IpRouteIpv4Remove());
}

IpRouteIpv4Remove::IpRouteIpv4Remove() { SetDescription("Remove IPv4 route"); }

IpRouteIpv4Remove::~IpRouteIpv4Remove() = default;

std::shared_ptr<InputSpec> IpRouteIpv4Remove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto network = ParameterSpec::New(kNetwork, ParameterType::String);
  network->SetRequired(true);
  network->SetShortName("n");
  network->SetDescription(
      "The Ipv4 address and prefix length of the network to remove the route from. Specify "
      "'default' to indicate the default network.");
  spec->AddParameter(network);
  auto gateway = ParameterSpec::New(kGateway, ParameterType::String);
  gateway->SetRequired(true);
  gateway->SetShortName("g");
  gateway->SetDescription("The Ipv4 address of the gateway through which a route to be removed");
  spec->AddParameter(gateway);
  spec->AddParameter(NewNetstackParameter(NetstackScope::UseDefault));
  return spec;
}

std::shared_ptr<OutputSpec> IpRouteIpv4Remove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void IpRouteIpv4Remove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  using OrvkCtl::Network::RoutingInfoImpl;
  try {
    RoutingInfoImpl routingInfo(kDefaultNetstackKey);
    if (IsNetstackGiven(*input)) {
      routingInfo.SetNetstackInstanceKey(NetstackOrDefault(*input));
    }
    HostCtl::Network::Ipv4Address gateway(input->GetParameter(kGateway));
    std::string const& text = input->GetParameter(kNetwork);
    HostCtl::Network::Ipv4Network network = text == "default" ? RoutingInfoImpl::DEFAULT_IPV4_ROUTE
                                                              : HostCtl::Network::Ipv4Network(text);
    if (!(network == RoutingInfoImpl::DEFAULT_IPV4_ROUTE)) {
      routingInfo.RemoveOrvikRoute(network, gateway);
    } else if (gateway == routingInfo.GetOrvikDefaultGateway() ||
               gateway == routingInfo.GetOrvikConfigDefaultGateway()) {
      // The default route goes with the default gateway.
      routingInfo.SetOrvikDefaultGateway(HostCtl::Network::Ipv4Address("0.0.0.0"), false);
    } else {
      output->AddErrorMessage(gateway.GetStringAddress() + " is not a default route.");
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
