#include "ip/IpRouteIpv6Add.h"

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

std::shared_ptr<IpRouteIpv6Add> IpRouteIpv6Add::New() {
  return std::shared_ptr<IpRouteIpv6Add>(new IpRouteIpv6Add());
}

IpRouteIpv6Add::IpRouteIpv6Add() { SetDescription("Add IPv6 route to the Orvik."); }

IpRouteIpv6Add::~IpRouteIpv6Add() = default;

std::shared_ptr<InputSpec> IpRouteIpv6Add::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto network = ParameterSpec::New(kNetwork, ParameterType::String);
  network->SetRequired(true);
  network->SetShortName("n");
  network->SetDescription(
      "The Ipv6 address and prefix length of the network to add the route to. Specify 'default' "
      "to indicate the default network.");
  spec->AddParameter(network);
  auto gateway = ParameterSpec::New(kGateway, ParameterType::String);
  gateway->SetRequired(true);
  gateway->SetShortName("g");
  gateway->SetDescription("The Ipv6 address of the gateway through which a route to be added.");
  spec->AddParameter(gateway);
  spec->AddParameter(NewNetstackParameter(NetstackScope::UseDefault));
  return spec;
}

std::shared_ptr<OutputSpec> IpRouteIpv6Add::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void IpRouteIpv6Add::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::RoutingInfoImpl routingInfo(kDefaultNetstackKey);
    if (IsNetstackGiven(*input)) {
      routingInfo.SetNetstackInstanceKey(NetstackOrDefault(*input));
    }
    HostCtl::Network::Ipv6Address gateway(input->GetParameter(kGateway));
    std::string const& network = input->GetParameter(kNetwork);
    if (network == "default") {
      routingInfo.AddIpv6OrvikRoute(OrvkCtl::Network::RoutingInfoImpl::DEFAULT_IPV6_ROUTE, gateway);
    } else {
      routingInfo.AddIpv6OrvikRoute(HostCtl::Network::Ipv6Network(network), gateway);
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
