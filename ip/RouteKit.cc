#include "ip/RouteKit.h"

#include <vector>

#include "hostctl/routing.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using OrvkCtl::Network::RoutingInfoImpl;

const std::string kRouteNetwork = "network";
const std::string kRouteGateway = "gateway";

namespace {

const std::string kNetwork = "Network";
const std::string kNetmask = "Netmask";
const std::string kGateway = "Gateway";
const std::string kInterface = "Interface";
const std::string kSource = "Source";

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
  static std::vector<HostCtl::Network::Ipv4RouteRecord> Current(RoutingInfoImpl& routing) {
    return routing.GetCurrentOrvikRoutes();
  }
  static std::string Netmask(Network const& network) {
    return network.GetNetmask().GetStringAddress();
  }
  static std::string NetworkText(Network const& network) {
    return network.GetNetwork().GetStringAddress();
  }
  static void SetSource(RoutingInfoImpl& routing, Network const& network,
                        Toolbase::MetaObj::MetaStruct& row) {
    row.SetField(kSource, routing.GetDefaultGatewaySource(network));
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
  static std::vector<HostCtl::Network::Ipv6RouteRecord> Current(RoutingInfoImpl& routing) {
    return routing.GetCurrentIpv6OrvikRoutes();
  }
  static std::string Netmask(Network const& network) {
    return Network::NetmaskFromNumber(network.GetNetmask()).GetStringAddress();
  }
  static std::string NetworkText(Network const& network) {
    return network.GetAddress().GetStringAddress();
  }
  static void SetSource(RoutingInfoImpl&, Network const&, Toolbase::MetaObj::MetaStruct&) {}
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

template <class Family>
std::shared_ptr<Toolbase::MetaObj::MetaList> ListRoutesOf(
    Toolbase::CallSpec::Input const& input,
    std::function<std::shared_ptr<Toolbase::MetaObj::MetaStruct>()> const& newRow) {
  using namespace Toolbase::MetaObj;
  RoutingInfoImpl routing(kDefaultNetstackKey);
  ChooseInstance(routing, input);
  auto list = MetaList::New(MetaType::Struct, newRow());
  for (auto const& route : Family::Current(routing)) {
    auto row = newRow();
    row->SetField(kNetmask, Family::Netmask(route.network));
    row->SetField(kInterface, route.interfaceName);
    row->SetField(kNetwork, route.network == Family::Default()
                                ? std::string("default")
                                : Family::NetworkText(route.network));
    row->SetField(kGateway, route.gateway.GetStringAddress());
    Family::SetSource(routing, route.network, *row);
    list->Add(row);
  }
  return list;
}

}  // namespace

std::shared_ptr<Toolbase::MetaObj::MetaStruct> RouteStructure(RouteFamily family) {
  using namespace Toolbase::MetaObj;
  auto result = MetaStruct::New(family == RouteFamily::Ipv4 ? "Ipv4Route" : "Ipv6Route");
  result->SetField(kNetwork, MetaString::New());
  result->SetField(kNetmask, MetaString::New());
  result->SetField(kGateway, MetaString::New());
  result->SetField(kInterface, MetaString::New());
  if (family == RouteFamily::Ipv4) result->SetField(kSource, MetaString::New());
  return result;
}

std::string RouteFieldsDirective(RouteFamily family) {
  return family == RouteFamily::Ipv4 ? "fields:Ipv4Route" : "fields:Ipv6Route";
}

std::string RouteFields(RouteFamily family) {
  std::string fields = kNetwork + "," + kNetmask + "," + kGateway + "," + kInterface;
  return family == RouteFamily::Ipv4 ? fields + "," + kSource : fields;
}

std::shared_ptr<Toolbase::MetaObj::MetaList> ListRoutes(
    Toolbase::CallSpec::Input const& input, RouteFamily family,
    std::function<std::shared_ptr<Toolbase::MetaObj::MetaStruct>()> const& newRow) {
  if (family == RouteFamily::Ipv4) return ListRoutesOf<Ipv4Routes>(input, newRow);
  return ListRoutesOf<Ipv6Routes>(input, newRow);
}

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
