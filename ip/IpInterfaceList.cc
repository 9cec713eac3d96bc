#include <string>

#include "hostctl/dvswitch.h"
#include "hostctl/network_types.h"
#include "hostctl/orvk_nic.h"
#include "hostctl/virtual_switch.h"
#include "ip/IpCommands.h"
#include "ip/IpInterfaceCommon.h"
#include "ip/NetstackOption.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;
using HostCtl::Network::ConnectionPoint;

namespace {
const std::string kName = "Name";
const std::string kMacAddress = "MAC Address";
const std::string kPortset = "Portset";
const std::string kPortgroup = "Portgroup";
const std::string kNetstackInstance = "Netstack Instance";
const std::string kKdsName = "KDS Name";
const std::string kKdsUuid = "KDS UUID";
const std::string kKdsPort = "KDS Port";
const std::string kKdsConnection = "KDS Connection";
const std::string kOpaqueNetworkId = "Opaque Network ID";
const std::string kOpaqueNetworkType = "Opaque Network Type";
const std::string kExternalId = "External ID";
const std::string kMtu = "MTU";
const std::string kTsoMss = "TSO MSS";
const std::string kRxDispQueueSize = "RXDispQueue Size";
const std::string kEnabled = "Enabled";
const std::string kPortId = "Port ID";
const std::string kNotAvailable = "N/A";
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceList, Rows)

IpInterfaceList::IpInterfaceList() {
  SetDescription(
      "This command will list the Orvik network interfaces currently known to the system.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:NetworkInterface", "%Name%");
  SetDefaultOutputParameter(
      "fields:NetworkInterface",
      "Name,MAC Address,Enabled,Portset,Portgroup,Netstack Instance,KDS Name,KDS UUID,KDS Port,"
      "KDS Connection,Opaque Network ID,Opaque Network Type,External ID,MTU,TSO MSS,"
      "RXDispQueue Size,Port ID");
}

std::shared_ptr<MetaStruct> IpInterfaceList::GetOutputStructure() {
  auto result = MetaStruct::New("NetworkInterface");
  result->SetField(kName, MetaString::New());
  result->SetField(kMacAddress, MetaString::New());
  result->SetField(kPortset, MetaString::New());
  result->SetField(kPortgroup, MetaString::New());
  result->SetField(kNetstackInstance, MetaString::New());
  result->SetField(kKdsName, MetaString::New());
  result->SetField(kKdsUuid, MetaString::New());
  result->SetField(kKdsPort, MetaString::New());
  result->SetField(kKdsConnection, MetaInt::New());
  result->SetField(kOpaqueNetworkId, MetaString::New());
  result->SetField(kOpaqueNetworkType, MetaString::New());
  result->SetField(kExternalId, MetaString::New());
  result->SetField(kMtu, MetaInt::New());
  result->SetField(kTsoMss, MetaInt::New());
  result->SetField(kRxDispQueueSize, MetaInt::New());
  result->SetField(kEnabled, MetaBool::New());
  result->SetField(kPortId, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> IpInterfaceList::GetInputSpecInternal() {
  return InputSpecOf({NewNetstackParameter(NetstackScope::ConsiderAll)});
}

void IpInterfaceList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    std::string const netstack = OptionalText(*input, kNetstack);
    auto nics =
        netstack.empty() ? nicInfo.GetOrvikNics() : nicInfo.GetOrvikNicsByInstanceKey(netstack);
    for (auto const& nic : nics) {
      auto row = GetOutputStructure();
      row->SetField(kName, nic->GetInterfaceName());
      row->SetField(kMacAddress, nic->GetMacAddress().GetStringAddress());
      std::unique_ptr<ConnectionPoint> point = nic->GetConnectionPoint();
      if (!point) {
        for (auto const* field :
             {&kPortset, &kPortgroup, &kNetstackInstance, &kKdsName, &kKdsUuid, &kKdsPort,
              &kOpaqueNetworkId, &kOpaqueNetworkType, &kExternalId}) {
          row->SetField(*field, kNotAvailable);
        }
        row->SetField(kKdsConnection, -1);
      } else {
        std::string const portset = point->GetPortsetName();
        row->SetField(kPortset, portset.empty() ? kNotAvailable : portset);
        switch (point->GetConnectionType()) {
          case ConnectionPoint::PortGroupConnection:
            row->SetField(kPortgroup, point->GetPortGroupName());
            row->SetField(kNetstackInstance, nic->GetNetstackInstanceKey());
            row->SetField(kKdsName, kNotAvailable);
            row->SetField(kKdsUuid, kNotAvailable);
            row->SetField(kKdsPort, kNotAvailable);
            row->SetField(kKdsConnection, -1);
            row->SetField(kOpaqueNetworkId, kNotAvailable);
            row->SetField(kOpaqueNetworkType, kNotAvailable);
            row->SetField(kExternalId, kNotAvailable);
            break;
          case ConnectionPoint::DVPortConnection: {
            HostCtl::Network::DVPortParam const param = point->GetDVPortParam();
            std::string kdsName = kNotAvailable;
            {
              OrvkCtl::Network::VirtualSwitchInfoImpl switchInfo;
              auto dvSwitch = switchInfo.GetDVSwitchByName(point->GetPortsetName());
              if (!dvSwitch) {
                output->AddErrorMessage("Unable to access the associated KDS");
              } else {
                kdsName = dvSwitch->GetDvsName();
              }
            }
            row->SetField(kPortgroup, kNotAvailable);
            row->SetField(kNetstackInstance, nic->GetNetstackInstanceKey());
            row->SetField(kKdsName, kdsName);
            row->SetField(kKdsUuid, param.switchUuid);
            row->SetField(kKdsPort, param.portId);
            row->SetField(kKdsConnection, param.connectionId);
            row->SetField(kOpaqueNetworkId, kNotAvailable);
            row->SetField(kOpaqueNetworkType, kNotAvailable);
            row->SetField(kExternalId, kNotAvailable);
            break;
          }
          case ConnectionPoint::OpaqueNetworkConnection: {
            HostCtl::Network::OpaqueNetworkParam const& param = point->GetOpaqueNetworkParam();
            row->SetField(kPortgroup, kNotAvailable);
            row->SetField(kNetstackInstance, nic->GetNetstackInstanceKey());
            row->SetField(kKdsName, kNotAvailable);
            row->SetField(kKdsUuid, kNotAvailable);
            row->SetField(kKdsPort, kNotAvailable);
            row->SetField(kKdsConnection, -1);
            row->SetField(kOpaqueNetworkId, param.networkId);
            row->SetField(kOpaqueNetworkType, param.networkType);
            row->SetField(kExternalId, param.externalId);
            break;
          }
          default:
            output->AddErrorMessage(
                "Unknown ConnectionPoint type found in list of Orvik network interfaces.");
            break;
        }
      }
      row->SetField(kMtu, nic->GetMtu());
      row->SetField(kTsoMss, nic->GetTsoMss());
      row->SetField(kRxDispQueueSize, nic->GetNumRxQueue());
      row->SetField(kEnabled, nic->IsEnabled());
      if (auto port = nic->GetPort()) row->SetField(kPortId, port->GetPortId());
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
