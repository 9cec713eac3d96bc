#include "ip/IpInterfaceIpv6AddressRemove.h"

#include <string>

#include "hostctl/network_types.h"
#include "hostctl/orvk_nic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kInterfaceName = "interface-name";
const std::string kIpv6 = "ipv6";
}  // namespace

std::shared_ptr<IpInterfaceIpv6AddressRemove> IpInterfaceIpv6AddressRemove::New() {
  return std::shared_ptr<IpInterfaceIpv6AddressRemove>(new IpInterfaceIpv6AddressRemove());
}

IpInterfaceIpv6AddressRemove::IpInterfaceIpv6AddressRemove() {
  SetDescription("Remove an IPv6 address from a given Orvik network interface.");
}

IpInterfaceIpv6AddressRemove::~IpInterfaceIpv6AddressRemove() = default;

std::shared_ptr<InputSpec> IpInterfaceIpv6AddressRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto name = ParameterSpec::New(kInterfaceName, ParameterType::String);
  name->SetRequired(true);
  name->SetShortName("i");
  name->SetDescription(
      "The name of the Orvik network interface to remove an IPv6 address from. This name must be "
      "an interface listed in the interface list command.");
  spec->AddParameter(name);
  auto ipv6 = ParameterSpec::New(kIpv6, ParameterType::String);
  ipv6->SetRequired(true);
  ipv6->SetShortName("I");
  ipv6->SetDescription(
      "The IPv6 address to remove from the given Orvik network interface. This must be in "
      "X:X:X::/X format");
  spec->AddParameter(ipv6);
  return spec;
}

std::shared_ptr<OutputSpec> IpInterfaceIpv6AddressRemove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void IpInterfaceIpv6AddressRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                   std::shared_ptr<Output> const& output) {
  using HostCtl::Network::Ipv6Network;
  std::string const& name = input->GetParameter(kInterfaceName);
  std::string const& ipv6 = input->GetParameter(kIpv6);
  try {
    if (!Ipv6Network::IsValidAddressAndNetmask(ipv6)) {
      output->AddErrorMessage(
          "Invalid format for IPv6 address. Address must be in the format "
          "<ipv6-address>/<prefix-length>   Example: 1:2:3:4::/64");
      return;
    }
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    auto nic = nicInfo.GetOrvikNicByInterface(name, false);
    if (!nic) {
      output->AddErrorMessage("Unable to find a Orvik interface with the name " + name);
      return;
    }
    HostCtl::Network::IpConfig cfg = nic->GetIpConfig();
    cfg.RemoveIpv6Network(Ipv6Network(ipv6));
    nic->SetIpConfig(cfg);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error removing IPv6 address for the interface " + name +
                            ". Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
