#include <string>

#include "hostctl/network_types.h"
#include "hostctl/orvk_nic.h"
#include "ip/IpCommands.h"
#include "ip/IpInterfaceCommon.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;
using HostCtl::Network::Ipv6Network;

namespace {
const std::string kInterface = "Interface";
const std::string kAddress = "Address";
const std::string kNetmask = "Netmask";
const std::string kType = "Type";
const std::string kStatus = "Status";

std::string TypeWord(Ipv6Network::Ipv6AddressType type) {
  switch (static_cast<uint32_t>(type)) {
    case 0:
      return "STATIC";
    case 7:
      return "AUTOCONF";
    case 9:
      return "DHCP";
    default:
      return "";
  }
}

std::string StatusWord(Ipv6Network::Ipv6AddressStatus status) {
  switch (static_cast<uint32_t>(status)) {
    case 2:
      return "TENTATIVE";
    case 3:
      return "DUPLICATED";
    case 5:
      return "DEPRECATED";
    default:
      return "PREFERRED";
  }
}
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceIpv6AddressList, Rows)

IpInterfaceIpv6AddressList::IpInterfaceIpv6AddressList() {
  SetDescription(
      "This command will list all of the IPv6 addresses currently assigned to the system");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:IPv6Interface", "Interface,Address,Netmask,Type,Status");
}

std::shared_ptr<MetaStruct> IpInterfaceIpv6AddressList::GetOutputStructure() {
  auto result = MetaStruct::New("IPv6Interface");
  result->SetField(kInterface, MetaString::New());
  result->SetField(kAddress, MetaString::New());
  result->SetField(kNetmask, MetaInt::New());
  result->SetField(kType, MetaString::New());
  result->SetField(kStatus, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> IpInterfaceIpv6AddressList::GetInputSpecInternal() {
  return InputSpecOf({Optional(
      Shared::InterfaceName,
      "The name of the Orvik network interface to limit the output of this command to.")});
}

void IpInterfaceIpv6AddressList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                 std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    HostCtl::Network::OrvkNicList nics;
    std::string const name = OptionalText(*input, kInterfaceName);
    if (name.empty()) {
      nics = nicInfo.GetOrvikNics();
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
      for (auto const& network : nic->GetIpConfig().GetIpv6Network()) {
        auto row = GetOutputStructure();
        row->SetField(kInterface, nic->GetInterfaceName());
        row->SetField(kAddress, network.GetAddress().GetStringAddress());
        row->SetField(kNetmask, network.GetNetmask());
        row->SetField(kType, TypeWord(network.GetIpv6AddressType()));
        row->SetField(kStatus, StatusWord(network.GetIpv6AddressStatus()));
        list->Add(row);
      }
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to list IPv6 Addresses. Error was: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
