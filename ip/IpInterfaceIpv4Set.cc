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
const std::string kType = "type";
const std::string kIpv4 = "ipv4";
const std::string kNetmask = "netmask";
const std::string kGateway = "gateway";
const std::string kPeerDns = "peer-dns";
const std::string kStatic = "static";
const std::string kDhcp = "dhcp";
const std::string kNone = "none";
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceIpv4Set, Bool)

IpInterfaceIpv4Set::IpInterfaceIpv4Set() {
  SetDescription("Configure IPv4 setting for a given Orvik network interface.");
}

std::shared_ptr<InputSpec> IpInterfaceIpv4Set::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(Required(
      Shared::InterfaceName,
      "The name of the Orvik network interface to set IPv4 settings for. This name must be an "
      "interface listed in the interface list command."));
  auto type = Optional(kType, ParameterType::String, "t", "IPv4 Address type : %FULLENUM%");
  auto types = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  types->AddStringEnum(kStatic,
                       "Set Static IPv4 information for this interface. Requires --ipv4 and "
                       "--netmask options.");
  types->AddStringEnum(kDhcp, "Use DHCP to aquire IPv4 setting for this interface.");
  types->AddStringEnum(kNone, "Remove IPv4 settings form this interface.");
  type->SetConstraint(types);
  spec->AddParameter(type);
  spec->AddParameter(
      Optional(kIpv4, ParameterType::String, "I", "The static IPv4 address for this interface."));
  spec->AddParameter(Optional(kNetmask, ParameterType::String, "N",
                              "The static IPv4 netmask for this interface."));
  spec->AddParameter(Optional(
      kGateway, ParameterType::String, "g",
      "The default gateway for this interface. The value must be a valid IPv4 address. Gateway "
      "would be reset if not provided"));
  spec->AddParameter(Optional(
      kPeerDns, ParameterType::Bool, "P",
      "A boolean value to indicate if the system should use the DNS settings published via "
      "DHCPv4 for this interface."));
  return spec;
}

void IpInterfaceIpv4Set::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  using HostCtl::Network::Ipv4Address;
  std::string const& name = input->GetParameter(kInterfaceName);
  try {
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    auto nic = nicInfo.GetOrvikNicByInterface(name, false);
    if (!nic) {
      output->AddErrorMessage("Unable to find a Orvik interface with the name " + name);
      return;
    }
    HostCtl::Network::IpConfig cfg = nic->GetIpConfig();
    cfg.SetIpv6DhcpDns(nic->GetConfiguredIpConfig().GetIpv6DhcpDns());

    bool const addressGiven = input->HasParameter(kIpv4) || input->HasParameter(kGateway);
    if (!input->HasParameter(kType)) {
      if (addressGiven) {
        output->AddErrorMessage(
            "-I|--ipv4 or -g|--gateway can be specified only if type is specified");
        return;
      }
    } else if (input->GetParameter(kType) == kStatic) {
      std::string const ipv4 = input->HasParameter(kIpv4) ? input->GetParameter(kIpv4) : "";
      std::string const netmask =
          input->HasParameter(kNetmask) ? input->GetParameter(kNetmask) : "";
      std::string gateway = "0.0.0.0";
      bool failed = false;
      if (ipv4.empty() || netmask.empty()) {
        output->AddErrorMessage("The --type=static requires the --ipv4 and --netmask options.");
        failed = true;
      }
      if (!Ipv4Address::IsValidAddress(ipv4)) {
        output->AddErrorMessage(
            "Invalid --ipv4 option provided. This address is not a valid IPv4 address");
        failed = true;
      }
      if (!Ipv4Address::IsValidAddress(netmask)) {
        output->AddErrorMessage(
            "Invalid --netmask option provided. This address is not a valid IPv4 address");
        failed = true;
      }
      if (input->HasParameter(kGateway)) {
        gateway = input->GetParameter(kGateway);
        if (!Ipv4Address::IsValidAddress(gateway)) {
          output->AddErrorMessage(
              "Invalid --gateway option provided. This address is not a valid IPv4 address");
          return;
        }
      }
      if (failed) return;
      cfg.SetIpv4Address(Ipv4Address(ipv4));
      cfg.SetIpv4Netmask(Ipv4Address(netmask));
      cfg.SetIpv4Gateway(Ipv4Address(gateway));
    } else {
      if (addressGiven) {
        output->AddErrorMessage(
            "-I|--ipv4 or -g|--gateway can be specified only if type is static");
        return;
      }
      if (input->GetParameter(kType) == kDhcp) {
        cfg.SetUseDhcp(true);
      } else {
        cfg.SetIpv4UseNone();
      }
    }

    if (input->HasParameter(kPeerDns)) {
      bool const peerDns = input->GetParameterBool(kPeerDns);
      if (cfg.GetUseDhcp()) {
        cfg.SetDhcpDns(peerDns);
      } else if (peerDns) {
        output->AddErrorMessage("-P|--peer-dns can be specified only if DHCP is enabled");
        return;
      }
    }
    nic->SetIpConfig(cfg);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error changing IPv4 configuration for the interface " + name +
                            ". Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
