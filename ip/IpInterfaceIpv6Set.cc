#include <string>

#include "hostctl/network_types.h"
#include "hostctl/orvk_nic.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kEnableIpv6 = "enable-ipv6";
const std::string kEnableDhcpv6 = "enable-dhcpv6";
const std::string kEnableRouterAdv = "enable-router-adv";
const std::string kPeerDns = "peer-dns";
const std::string kGateway = "gateway";
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceIpv6Set, Bool)

IpInterfaceIpv6Set::IpInterfaceIpv6Set() {
  SetDescription("Configure IPv6 settings for a given Orvik network interface.");
}

std::shared_ptr<InputSpec> IpInterfaceIpv6Set::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::InterfaceName,
                "The name of the Orvik network interface to set IPv6 settings for. This name must "
                "be an interface listed in the interface list command."),
       Optional(kEnableIpv6, ParameterType::Bool, "e",
                "Setting this value to true enables IPv6 on thisinterface while setting it to "
                "false disables IPv6 on this interface."),
       Optional(kEnableDhcpv6, ParameterType::Bool, "d",
                "Setting this value to true will enable DHCPv6 on this interface and attempt to "
                "aquire an IPv6 address from the network "),
       Optional(kEnableRouterAdv, ParameterType::Bool, "r",
                "Setting this value to true will enable IPv6 Router Advertised IPv6 addresses to "
                "be added to this interface from any routers broadcasting on the local network."),
       Optional(kPeerDns, ParameterType::Bool, "P",
                "A boolean value to indicate if the system should use the DNS settings published "
                "via DHCPv6 for this interface."),
       Optional(kGateway, ParameterType::String, "g",
                "A default gateway for this interface. The value must be a valid IPv6 address.")});
}

void IpInterfaceIpv6Set::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  using HostCtl::Network::Ipv6Address;
  std::string const& name = input->GetParameter(kInterfaceName);
  try {
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    auto nic = nicInfo.GetOrvikNicByInterface(name, false);
    if (!nic) {
      output->AddErrorMessage("Unable to find a Orvik interface with the name " + name);
      return;
    }
    HostCtl::Network::IpConfig cfg = nic->GetIpConfig();
    cfg.SetDhcpDns(nic->GetConfiguredIpConfig().GetDhcpDns());
    if (input->HasParameter(kEnableDhcpv6)) {
      cfg.SetUseIpv6Dhcp(input->GetParameterBool(kEnableDhcpv6));
    }
    if (input->HasParameter(kEnableRouterAdv)) {
      cfg.SetUseIpv6RouterAdvertised(input->GetParameterBool(kEnableRouterAdv));
    }
    if (input->HasParameter(kPeerDns)) {
      bool const peerDns = input->GetParameterBool(kPeerDns);
      if (cfg.GetUseIpv6Dhcp() || cfg.GetUseIpv6RouterAdvertised()) {
        cfg.SetIpv6DhcpDns(peerDns);
      } else if (peerDns) {
        output->AddErrorMessage("-P|--peer-dns can be specified only if DHCPv6 or RA is enabled");
        return;
      }
    }
    if (input->HasParameter(kEnableIpv6)) {
      cfg.SetUseIpv6(input->GetParameterBool(kEnableIpv6));
    }
    if (!input->HasParameter(kGateway)) {
      cfg.SetIpv6Gateway(Ipv6Address());
    } else {
      if (cfg.GetUseIpv6RouterAdvertised()) {
        output->AddErrorMessage(
            "Cannot set an interface gateway when Router Advertisement is enabled.");
        return;
      }
      std::string const& gateway = input->GetParameter(kGateway);
      if (!Ipv6Address::IsValidAddress(gateway)) {
        output->AddErrorMessage(
            "Invalid --gateway option provided.This address is not a valid IPv6 address");
        return;
      }
      cfg.SetIpv6Gateway(Ipv6Address(gateway));
    }
    nic->SetIpConfig(cfg);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error changing IPv6 configuration for the interface " + name +
                            ". Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
