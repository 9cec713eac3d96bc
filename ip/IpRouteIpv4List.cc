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
const std::string kSource = "Source";
}  // namespace

NETWORK_COMMAND_NEW(IpRouteIpv4List)

IpRouteIpv4List::IpRouteIpv4List() {
  SetDescription("List configured IPv4 routes");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:Ipv4Route", "Network,Netmask,Gateway,Interface,Source");
}

std::shared_ptr<MetaStruct> IpRouteIpv4List::GetOutputStructure() {
  auto result = MetaStruct::New("Ipv4Route");
  result->SetField(kNetwork, MetaString::New());
  result->SetField(kNetmask, MetaString::New());
  result->SetField(kGateway, MetaString::New());
  result->SetField(kInterface, MetaString::New());
  result->SetField(kSource, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> IpRouteIpv4List::GetInputSpecInternal() {
  return InputSpecOf({NewNetstackParameter(NetstackScope::UseDefault)});
}

std::shared_ptr<OutputSpec> IpRouteIpv4List::GetOutputSpecInternal() {
  return RootSpec(MetaList::New(MetaType::Struct, GetOutputStructure()));
}

void IpRouteIpv4List::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  using OrvkCtl::Network::RoutingInfoImpl;
  try {
    RoutingInfoImpl routingInfo(kDefaultNetstackKey);
    if (IsNetstackGiven(*input)) {
      routingInfo.SetNetstackInstanceKey(NetstackOrDefault(*input));
    }
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    for (auto const& route : routingInfo.GetCurrentOrvikRoutes()) {
      auto row = GetOutputStructure();
      row->SetField(kNetmask, route.network.GetNetmask().GetStringAddress());
      row->SetField(kInterface, route.interfaceName);
      row->SetField(kNetwork, route.network == RoutingInfoImpl::DEFAULT_IPV4_ROUTE
                                  ? std::string("default")
                                  : route.network.GetNetwork().GetStringAddress());
      row->SetField(kGateway, route.gateway.GetStringAddress());
      row->SetField(kSource, routingInfo.GetDefaultGatewaySource(route.network));
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
