#include <string>
#include <vector>

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
const std::string kAll = "all";
const std::string kNeighbor = "Neighbor";
const std::string kMacAddress = "Mac Address";
const std::string kOrvknic = "Orvknic";
const std::string kExpiry = "Expiry";
const std::string kState = "State";
const std::string kType = "Type";
}  // namespace

NETWORK_COMMAND_NEW(IpNeighborList, Rows)

IpNeighborList::IpNeighborList() {
  SetDescription("List ARP table entries");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:NetworkNeighbor",
                            "Neighbor,Mac Address,Orvknic,Expiry,State,Type");
  SetDefaultOutputParameter("units:NetworkNeighbor.Expiry", "sec");
}

std::shared_ptr<MetaStruct> IpNeighborList::GetOutputStructure() {
  auto result = MetaStruct::New("NetworkNeighbor");
  result->SetField(kNeighbor, MetaString::New());
  result->SetField(kMacAddress, MetaString::New());
  result->SetField(kOrvknic, MetaString::New());
  result->SetField(kExpiry, MetaInt::New());
  result->SetField(kState, MetaString::New());
  result->SetField(kType, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> IpNeighborList::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto version = Optional(kVersion, ParameterType::String, "v", "IP version : %ENUM%");
  auto versions = ParameterConstraint::New(ParameterConstraintType::StringEnum);
  versions->AddStringEnum("4");
  versions->AddStringEnum("6");
  versions->AddStringEnum("all");
  version->SetConstraint(versions);
  spec->AddParameter(version);
  spec->AddParameter(NewNetstackParameter(NetstackScope::UseDefault));
  spec->AddParameter(
      Optional(Shared::InterfaceName,
               "The name of the Orvik network interface to limit the output of this command to; if "
               "unspecified, list neighbors on all interfaces."));
  return spec;
}

// Deliberately without a handler: what the host throws here leaves the
// command for the framework to report.
void IpNeighborList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  OrvkCtl::Network::OrvikNicInfoImpl orvikNicInfo;
  auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
  std::string version = kAll;
  std::string interfaceName;
  if (input->HasParameter(kInterfaceName)) interfaceName = input->GetParameter(kInterfaceName);
  OrvkCtl::Network::RoutingInfoImpl routingInfo(kDefaultNetstackKey);
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  routingInfo.SetNetstackInstanceKey(NetstackOrDefault(*input));
  if (input->HasParameter(kVersion)) version = input->GetParameter(kVersion);
  if (!interfaceName.empty() && !orvikNicInfo.GetOrvikNicByInterface(interfaceName, false)) {
    output->AddErrorMessage("Unable to find a Orvik interface with the name " + interfaceName);
    return;
  }
  if (version == kAll || version == "4") {
    std::vector<HostCtl::Network::Ipv4Neighbor> neighbors;
    routingInfo.GetCurrentIpv4OrvikNeighbors(neighbors, interfaceName);
    for (auto const& neighbor : neighbors) {
      auto row = GetOutputStructure();
      row->SetField(kNeighbor, neighbor.address.GetStringAddress());
      row->SetField(kMacAddress, neighbor.macAddress);
      row->SetField(kOrvknic, neighbor.interfaceName);
      // Signed: a negative expiry shows as such.
      row->SetField(kExpiry, static_cast<long>(neighbor.expiry));
      row->SetField(kState, "");
      row->SetField(kType, routingInfo.GetIpv4NeighborType(neighbor));
      list->Add(row);
    }
  }
  if ((version == "6" || version == kAll) && networkInfo.IsOrvkIpv6Enabled()) {
    std::vector<HostCtl::Network::Ipv6Neighbor> neighbors;
    routingInfo.GetCurrentIpv6OrvikNeighbors(neighbors, interfaceName);
    for (auto const& neighbor : neighbors) {
      auto row = GetOutputStructure();
      row->SetField(kNeighbor, neighbor.address.GetStringAddress());
      row->SetField(kMacAddress, neighbor.macAddress);
      row->SetField(kOrvknic, neighbor.interfaceName);
      // Unsigned: zero-extended.
      row->SetField(kExpiry, static_cast<long>(neighbor.expiry));
      row->SetField(kState, routingInfo.GetIpv6NeighborState(neighbor));
      row->SetField(kType, routingInfo.GetIpv6NeighborType(neighbor));
      list->Add(row);
    }
  }
  output->SetRootObject(list);
}

}  // namespace CorvaneCli::NetworkNamespace
