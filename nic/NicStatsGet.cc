#include <cstdint>
#include <memory>
#include <string>

#include "hostctl/pnic.h"
#include "nic/CounterKit.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
using HostCtl::Network::PnicStats;

const std::string kStructure = "Nic";
const std::string kNicNameField = "NIC Name";

// The counters as shown, in the order shown.
const Counter<PnicStats> kCounters[] = {
    {"Packets received", &PnicStats::packetsReceived},
    {"Packets sent", &PnicStats::packetsSent},
    {"Bytes received", &PnicStats::bytesReceived},
    {"Bytes sent", &PnicStats::bytesSent},
    {"Receive packets dropped", &PnicStats::receiveDropped},
    {"Transmit packets dropped", &PnicStats::transmitDropped},
    {"Multicast packets received", &PnicStats::multicastReceived},
    {"Broadcast packets received", &PnicStats::broadcastReceived},
    {"Multicast packets sent", &PnicStats::multicastSent},
    {"Broadcast packets sent", &PnicStats::broadcastSent},
    {"Total receive errors", &PnicStats::receiveErrors},
    {"Receive length errors", &PnicStats::receiveLengthErrors},
    {"Receive over errors", &PnicStats::receiveOverErrors},
    {"Receive CRC errors", &PnicStats::receiveCrcErrors},
    {"Receive frame errors", &PnicStats::receiveFrameErrors},
    {"Receive FIFO errors", &PnicStats::receiveFifoErrors},
    {"Receive missed errors", &PnicStats::receiveMissedErrors},
    {"Total transmit errors", &PnicStats::transmitErrors},
    {"Transmit aborted errors", &PnicStats::transmitAbortedErrors},
    {"Transmit carrier errors", &PnicStats::transmitCarrierErrors},
    {"Transmit FIFO errors", &PnicStats::transmitFifoErrors},
    {"Transmit heartbeat errors", &PnicStats::transmitHeartbeatErrors},
    {"Transmit window errors", &PnicStats::transmitWindowErrors},
};
}  // namespace

NETWORK_COMMAND_NEW(NicStatsGet, Rows)

NicStatsGet::NicStatsGet() {
  SetDescription("Get NIC statistics for a given interface.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:" + kStructure, "NIC statistics for %" + kNicNameField + "%");
  SetDefaultOutputParameter("fields:" + kStructure, CounterFields<PnicStats>(kCounters));
}

std::shared_ptr<MetaStruct> NicStatsGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNicNameField, MetaString::New());
  AddCounterFields<PnicStats>(*result, kCounters);
  return result;
}

std::shared_ptr<InputSpec> NicStatsGet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::NicName, "Name of the NIC to get statistics from.")});
}

void NicStatsGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                  std::shared_ptr<Output> const& output) {
  try {
    auto nic = GetOutputStructure();
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    std::string const& name = input->GetParameter(kNicName);
    OrvkCtl::Network::PnicImpl pnic(name);
    PnicStats stats;
    pnic.GetPnicStats(stats);
    nic->SetField(kNicNameField, pnic.GetName());
    FillCounters<PnicStats>(*nic, kCounters, stats);
    list->Add(nic);
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to get stats for NIC: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
