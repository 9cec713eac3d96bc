#include <string>

#include "hostctl/network_types.h"
#include "hostctl/orvk_nic.h"
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
const std::string kIpv6Enabled = "IPv6 Enabled";
const std::string kDhcpv6Enabled = "DHCPv6 Enabled";
const std::string kRouterAdvEnabled = "Router Adv Enabled";
const std::string kDhcpDns = "DHCP DNS";
const std::string kGateway = "Gateway";
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceIpv6Get, Rows)

IpInterfaceIpv6Get::IpInterfaceIpv6Get() {
  SetDescription(
      "Get IPv6 settings for Orvik network interfaces. This does not include the IPv6 addresses "
      "which can be found in the \"address list\" command.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:IPv6Interface",
                            "Name,IPv6 Enabled,DHCPv6 Enabled,Router Adv Enabled,DHCP DNS,Gateway");
}

std::shared_ptr<MetaStruct> IpInterfaceIpv6Get::GetOutputStructure() {
  auto result = MetaStruct::New("IPv6Interface");
  result->SetField(kName, MetaString::New());
  result->SetField(kIpv6Enabled, MetaBool::New());
  result->SetField(kDhcpv6Enabled, MetaBool::New());
  result->SetField(kRouterAdvEnabled, MetaBool::New());
  result->SetField(kDhcpDns, MetaBool::New());
  result->SetField(kGateway, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> IpInterfaceIpv6Get::GetInputSpecInternal() {
  return InputSpecOf(
      {Optional(kInterfaceName, ParameterType::String, "n",
                "The name of the Orvik network interface to limit the output of this command to."),
       NewNetstackParameter(NetstackScope::ConsiderAll)});
}

void IpInterfaceIpv6Get::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    HostCtl::Network::OrvkNicList nics;
    std::string const name = OptionalText(*input, kInterfaceName);
    if (name.empty()) {
      std::string const netstack = OptionalText(*input, kNetstack);
      nics =
          netstack.empty() ? nicInfo.GetOrvikNics() : nicInfo.GetOrvikNicsByInstanceKey(netstack);
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
      row->SetField(kIpv6Enabled, cfg.GetUseIpv6());
      row->SetField(kDhcpv6Enabled, cfg.GetUseIpv6Dhcp());
      row->SetField(kRouterAdvEnabled, cfg.GetUseIpv6RouterAdvertised());
      row->SetField(kGateway, cfg.GetIpv6Gateway().GetStringAddress());
      bool dhcpDns = false;
      if (cfg.GetUseIpv6Dhcp() || cfg.GetUseIpv6RouterAdvertised()) {
        dhcpDns = nic->GetConfiguredIpConfig().GetIpv6DhcpDns();
      }
      row->SetField(kDhcpDns, dhcpDns);
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error getting IPv6 configuration. . Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
