#include <string>

#include "hostctl/network_info.h"
#include "hostctl/orvk_nic.h"
#include "hostctl/routing.h"
#include "ip/IpCommands.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kVersion = "version";
const std::string kNeighborAddr = "neighbor-addr";
}  // namespace

NETWORK_COMMAND_NEW(IpNeighborRemove, Bool)

IpNeighborRemove::IpNeighborRemove() { SetDescription("Remove ARP table entries"); }

std::shared_ptr<InputSpec> IpNeighborRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto version = Required(kVersion, ParameterType::String, "v", "IP version : %ENUM%");
  auto versions = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  versions->AddStringEnum("4");
  versions->AddStringEnum("6");
  version->SetConstraint(versions);
  spec->AddParameter(version);
  spec->AddParameter(NewNetstackParameter(NetstackScope::UseDefault));
  spec->AddParameter(
      Optional(Shared::InterfaceName,
               "The name of the Orvik network interface to remove the neighbor entry from. If not "
               "specified, neighbor will be removed from all interfaces"));
  spec->AddParameter(Required(kNeighborAddr, ParameterType::String, "a",
                              "The IPv4/IPv6 address of the neighbor."));
  return spec;
}

void IpNeighborRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                       std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::OrvikNicInfoImpl orvikNicInfo;
    std::string interfaceName;
    if (input->HasParameter(kInterfaceName)) interfaceName = input->GetParameter(kInterfaceName);
    std::string const& version = input->GetParameter(kVersion);
    OrvkCtl::Network::RoutingInfoImpl routingInfo(kDefaultNetstackKey);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    std::string key = NetstackOrDefault(*input);
    if (interfaceName.empty()) {
      routingInfo.SetNetstackInstanceKey(key);
    } else {
      auto orvkNic = orvikNicInfo.GetOrvikNicByInterface(interfaceName, false);
      if (!orvkNic) {
        output->AddErrorMessage("Unable to find a Orvik interface with the name " + interfaceName);
        return;
      }
      // The interface's own instance; --netstack is not consulted then.
      routingInfo.SetNetstackInstanceKey(orvkNic->GetNetstackInstanceKey());
    }
    if (version == "4") {
      HostCtl::Network::Ipv4Neighbor neighbor;
      neighbor.address = HostCtl::Network::Ipv4Address(input->GetParameter(kNeighborAddr));
      neighbor.interfaceName = interfaceName;
      routingInfo.RemoveIpv4Neighbor(neighbor);
    } else if (version == "6" && networkInfo.IsOrvkIpv6Enabled()) {
      HostCtl::Network::Ipv6Neighbor neighbor;
      neighbor.address = HostCtl::Network::Ipv6Address(input->GetParameter(kNeighborAddr));
      neighbor.interfaceName = interfaceName;
      routingInfo.RemoveIpv6Neighbor(neighbor);
    }
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
