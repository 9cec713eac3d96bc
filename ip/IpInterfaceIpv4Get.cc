#include <string>

#include "hostctl/network_types.h"
#include "hostctl/orvk_nic.h"
#include "hostctl/routing.h"
#include "ip/IpCommands.h"
#include "ip/IpInterfaceCommon.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kName = "Name";
const std::string kIpv4Address = "IPv4 Address";
const std::string kIpv4Netmask = "IPv4 Netmask";
const std::string kIpv4Broadcast = "IPv4 Broadcast";
const std::string kAddressType = "Address Type";
const std::string kGateway = "Gateway";
const std::string kDhcpDns = "DHCP DNS";
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceIpv4Get, Rows)

IpInterfaceIpv4Get::IpInterfaceIpv4Get() {
  SetDescription("List the IPv4 addresses assigned to Orvik network interfaces.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(
      "fields:IPv4Interface",
      "Name,IPv4 Address,IPv4 Netmask,IPv4 Broadcast,Address Type,Gateway,DHCP DNS");
}

std::shared_ptr<MetaStruct> IpInterfaceIpv4Get::GetOutputStructure() {
  auto result = MetaStruct::New("IPv4Interface");
  result->SetField(kName, MetaString::New());
  result->SetField(kIpv4Address, MetaString::New());
  result->SetField(kIpv4Netmask, MetaString::New());
  result->SetField(kIpv4Broadcast, MetaString::New());
  result->SetField(kAddressType, MetaString::New());
  result->SetField(kGateway, MetaString::New());
  result->SetField(kDhcpDns, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> IpInterfaceIpv4Get::GetInputSpecInternal() {
  return InputSpecOf(
      {NewNetstackParameter(NetstackScope::ConsiderAll),
       Optional(
           Shared::InterfaceName,
           "The name of the Orvik network interface to limit the output of this command to.")});
}

void IpInterfaceIpv4Get::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  using HostCtl::Network::Ipv4Address;
  try {
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    OrvkCtl::Network::RoutingInfoImpl routingInfo(kDefaultNetstackKey);
    HostCtl::Network::OrvkNicList nics;
    std::string const name = OptionalText(*input, kInterfaceName);
    if (name.empty()) {
      std::string const netstack = OptionalText(*input, kNetstack);
      if (netstack.empty()) {
        nics = nicInfo.GetOrvikNics();
      } else {
        nics = nicInfo.GetOrvikNicsByInstanceKey(netstack);
        routingInfo.SetNetstackInstanceKey(netstack);
      }
    } else {
      auto nic = nicInfo.GetOrvikNicByInterface(name, false);
      if (!nic) {
        output->AddErrorMessage("Unable to find a Orvik interface with the name " + name);
        return;
      }
      nics.push_back(std::move(nic));
    }
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    for (auto const& nic : nics) {
      HostCtl::Network::IpConfig const cfg = nic->GetIpConfig();
      auto row = GetOutputStructure();
      row->SetField(kName, nic->GetInterfaceName());
      row->SetField(kIpv4Address, cfg.GetIpv4Address().GetStringAddress());
      row->SetField(kIpv4Netmask, cfg.GetIpv4Netmask().GetStringAddress());
      row->SetField(kIpv4Broadcast, cfg.GetIpv4Broadcast().GetStringAddress());
      std::string type = "STATIC";
      bool dhcpDns = false;
      Ipv4Address gateway = cfg.GetIpv4Gateway();
      if (cfg.GetUseDhcp()) {
        type = "DHCP";
        dhcpDns = nic->GetConfiguredIpConfig().GetDhcpDns();
      } else if (cfg.GetIpv4UseNone()) {
        type = "NONE";
      } else if (gateway == Ipv4Address("0.0.0.0")) {
        gateway = routingInfo.GetOrvikDefaultGateway();
      }
      row->SetField(kAddressType, type);
      row->SetField(kGateway, gateway.GetStringAddress());
      row->SetField(kDhcpDns, dhcpDns);
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error getting IPv4 configuration. . Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
