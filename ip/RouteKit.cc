#include "ip/RouteKit.h"

#include "hostctl/routing.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using OrvkCtl::Network::RoutingInfoImpl;

const std::string kRouteNetwork = "network";
const std::string kRouteGateway = "gateway";

namespace {

struct Ipv4Routes {
  using Address = HostCtl::Network::Ipv4Address;
  using Network = HostCtl::Network::Ipv4Network;
  static constexpr bool kAddressesBeforeInstance = false;
  static Network const& Default() { return RoutingInfoImpl::DEFAULT_IPV4_ROUTE; }
  static void Add(RoutingInfoImpl& routing, Network const& network, Address const& gateway) {
    routing.AddOrvikRoute(network, gateway);
  }
  static void Remove(RoutingInfoImpl& routing, Network const& network, Address const& gateway) {
    routing.RemoveOrvikRoute(network, gateway);
  }
  static bool IsDefaultGateway(RoutingInfoImpl& routing, Address const& gateway) {
    return gateway == routing.GetOrvikDefaultGateway() ||
           gateway == routing.GetOrvikConfigDefaultGateway();
  }
  static void DropDefaultGateway(RoutingInfoImpl& routing) {
    routing.SetOrvikDefaultGateway(Address("0.0.0.0"), false);
  }
};

struct Ipv6Routes {
  using Address = HostCtl::Network::Ipv6Address;
  using Network = HostCtl::Network::Ipv6Network;
  static constexpr bool kAddressesBeforeInstance = true;
  static Network const& Default() { return RoutingInfoImpl::DEFAULT_IPV6_ROUTE; }
  static void Add(RoutingInfoImpl& routing, Network const& network, Address const& gateway) {
    routing.AddIpv6OrvikRoute(network, gateway);
  }
  static void Remove(RoutingInfoImpl& routing, Network const& network, Address const& gateway) {
    routing.RemoveIpv6OrvikRoute(network, gateway);
  }
  static bool IsDefaultGateway(RoutingInfoImpl& routing, Address const& gateway) {
    return gateway == routing.GetIpv6OrvikDefaultGateway() ||
           gateway == routing.GetIpv6OrvikConfigDefaultGateway();
  }
  static void DropDefaultGateway(RoutingInfoImpl& routing) {
    routing.SetIpv6OrvikDefaultGateway(Address());
  }
};

void ChooseInstance(RoutingInfoImpl& routing, Toolbase::CallSpec::Input const& input) {
  if (IsNetstackGiven(input)) routing.SetNetstackInstanceKey(NetstackOrDefault(input));
}

template <class Family>
void AddRouteOf(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output) {
  RoutingInfoImpl routing(kDefaultNetstackKey);
  ChooseInstance(routing, input);
  typename Family::Address gateway(input.GetParameter(kRouteGateway));
  std::string const& network = input.GetParameter(kRouteNetwork);
  if (network == "default") {
    Family::Add(routing, Family::Default(), gateway);
  } else {
    Family::Add(routing, typename Family::Network(network), gateway);
  }
  output.SetRootObject(Toolbase::MetaObj::MetaBool::New(true));
}

template <class Family>
void RemoveRouteOf(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output) {
  RoutingInfoImpl routing(kDefaultNetstackKey);
  if (!Family::kAddressesBeforeInstance) ChooseInstance(routing, input);
  typename Family::Address gateway(input.GetParameter(kRouteGateway));
  std::string const& text = input.GetParameter(kRouteNetwork);
  typename Family::Network network =
      text == "default" ? Family::Default() : typename Family::Network(text);
  if (Family::kAddressesBeforeInstance) ChooseInstance(routing, input);
  if (!(network == Family::Default())) {
    Family::Remove(routing, network, gateway);
  } else if (Family::IsDefaultGateway(routing, gateway)) {
    // The default route goes with the default gateway.
    Family::DropDefaultGateway(routing);
  } else {
    output.AddErrorMessage(gateway.GetStringAddress() + " is not a default route.");
  }
  output.SetRootObject(Toolbase::MetaObj::MetaBool::New(true));
}

}  // namespace

void AddRoute(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
              RouteFamily family) {
  if (family == RouteFamily::Ipv4) {
    AddRouteOf<Ipv4Routes>(input, output);
  } else {
    AddRouteOf<Ipv6Routes>(input, output);
  }
}

void RemoveRoute(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                 RouteFamily family) {
  if (family == RouteFamily::Ipv4) {
    RemoveRouteOf<Ipv4Routes>(input, output);
  } else {
    RemoveRouteOf<Ipv6Routes>(input, output);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
