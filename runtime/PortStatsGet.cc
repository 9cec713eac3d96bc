#include <cstdlib>
#include <string>

#include "hostctl/port.h"
#include "hostctl/virtual_switch.h"
#include "runtime/RuntimeCommands.h"
#include "runtime/VmPortWalk.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kPortid = "portid";
const std::string kPortId = "Port ID";
const std::string kPacketsReceived = "Packets received";
const std::string kPacketsSent = "Packets sent";
const std::string kBytesReceived = "Bytes received";
const std::string kBytesSent = "Bytes sent";
const std::string kBroadcastReceived = "Broadcast packets received";
const std::string kBroadcastSent = "Broadcast packets sent";
const std::string kMulticastReceived = "Multicast packets received";
const std::string kMulticastSent = "Multicast packets sent";
const std::string kUnicastReceived = "Unicast packets received";
const std::string kUnicastSent = "Unicast packets sent";
const std::string kReceiveDropped = "Receive packets dropped";
const std::string kTransmitDropped = "Transmit packets dropped";
}  // namespace

NETWORK_COMMAND_NEW(PortStatsGet, Rows)

PortStatsGet::PortStatsGet() {
  SetDescription("Packet statistics for a given port.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:Port", "Packet statistics for port %Port ID%");
  SetDefaultOutputParameter(
      "fields:Port",
      "Packets received,Packets sent,Bytes received,Bytes sent,Broadcast packets received,"
      "Broadcast packets sent,Multicast packets received,Multicast packets sent,Unicast packets "
      "received,Unicast packets sent,Receive packets dropped,Transmit packets dropped");
}

std::shared_ptr<MetaStruct> PortStatsGet::GetOutputStructure() {
  auto result = MetaStruct::New("Port");
  for (auto const* field :
       {&kPortId, &kPacketsReceived, &kPacketsSent, &kBytesReceived, &kBytesSent,
        &kBroadcastReceived, &kBroadcastSent, &kMulticastReceived, &kMulticastSent,
        &kUnicastReceived, &kUnicastSent, &kReceiveDropped, &kTransmitDropped}) {
    result->SetField(*field, MetaInt::New());
  }
  return result;
}

std::shared_ptr<InputSpec> PortStatsGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(kPortid, ParameterType::Int, "p", "Port ID for the port to get statistics.")});
}

void PortStatsGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                   std::shared_ptr<Output> const& output) {
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    long wanted = std::strtol(input->GetParameter(kPortid).c_str(), nullptr, 10);
    bool found = VisitPortById(wanted, *output, [&](OrvkCtl::Network::PortImpl& port) {
      HostCtl::Network::PortStats portStats = port.GetPortStats();
      HostCtl::Network::PacketStats packets{};
      port.GetPacketStats(packets);
      auto row = GetOutputStructure();
      row->SetField(kPortId, port.GetId());
      row->SetField(kPacketsReceived, static_cast<long>(packets.packetsReceived));
      row->SetField(kPacketsSent, static_cast<long>(packets.packetsSent));
      row->SetField(kBytesReceived, static_cast<long>(portStats.bytesReceived));
      row->SetField(kBytesSent, static_cast<long>(portStats.bytesSent));
      row->SetField(kBroadcastReceived, static_cast<long>(packets.broadcastPacketsReceived));
      row->SetField(kBroadcastSent, static_cast<long>(packets.broadcastPacketsSent));
      row->SetField(kMulticastReceived, static_cast<long>(packets.multicastPacketsReceived));
      row->SetField(kMulticastSent, static_cast<long>(packets.multicastPacketsSent));
      row->SetField(kUnicastReceived,
                    static_cast<long>(packets.packetsReceived - packets.multicastPacketsReceived -
                                      packets.broadcastPacketsReceived));
      row->SetField(kUnicastSent,
                    static_cast<long>(packets.packetsSent - packets.multicastPacketsSent -
                                      packets.broadcastPacketsSent));
      row->SetField(kReceiveDropped, static_cast<long>(packets.receivePacketsDropped));
      row->SetField(kTransmitDropped, static_cast<long>(packets.transmitPacketsDropped));
      list->Add(row);
    });
    if (!found) return;
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to get stats for port: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
