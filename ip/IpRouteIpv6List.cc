#include <string>

#include "hostctl/routing.h"
#include "ip/IpCommands.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kNetwork = "Network";
const std::string kNetmask = "Netmask";
const std::string kGateway = "Gateway";
const std::string kInterface = "Interface";
}  // namespace

NETWORK_COMMAND_NEW(IpRouteIpv6List)

IpRouteIpv6List::IpRouteIpv6List() {
  SetDescription("List configured IPv6 routes");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:Ipv6Route", "Network,Netmask,Gateway,Interface");
}

std::shared_ptr<MetaStruct> IpRouteIpv6List::GetOutputStructure() {
  auto result = MetaStruct::New("Ipv6Route");
  result->SetField(kNetwork, MetaString::New());
  result->SetField(kNetmask, MetaString::New());
  result->SetField(kGateway, MetaString::New());
  result->SetField(kInterface, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> IpRouteIpv6List::GetInputSpecInternal() {
  return InputSpecOf({NewNetstackParameter(NetstackScope::UseDefault)});
}

std::shared_ptr<OutputSpec> IpRouteIpv6List::GetOutputSpecInternal() {
  return RootSpec(MetaList::New(MetaType::Struct, GetOutputStructure()));
}

void IpRouteIpv6List::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  using HostCtl::Network::Ipv6Network;
  using OrvkCtl::Network::RoutingInfoImpl;
  try {
    RoutingInfoImpl routingInfo(kDefaultNetstackKey);
    if (IsNetstackGiven(*input)) {
      routingInfo.SetNetstackInstanceKey(NetstackOrDefault(*input));
    }
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    for (auto const& route : routingInfo.GetCurrentIpv6OrvikRoutes()) {
      auto row = GetOutputStructure();
      row->SetField(kNetmask,
                    Ipv6Network::NetmaskFromNumber(route.network.GetNetmask()).GetStringAddress());
      row->SetField(kInterface, route.interfaceName);
      row->SetField(kNetwork, route.network == RoutingInfoImpl::DEFAULT_IPV6_ROUTE
                                  ? std::string("default")
                                  : route.network.GetAddress().GetStringAddress());
      row->SetField(kGateway, route.gateway.GetStringAddress());
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
