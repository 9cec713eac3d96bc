#include <cstdint>
#include <memory>
#include <string>

#include "hostctl/pnic.h"
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

// The counters as shown, in the order shown, with the field of the record
// behind each.
struct Counter {
  char const* field;
  uint64_t PnicStats::*member;
};
const Counter kCounters[] = {
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

std::string FieldList() {
  std::string fields;
  fields.reserve(std::size(kCounters) * 24);
  for (auto const& counter : kCounters) {
    if (!fields.empty()) fields += ',';
    fields += counter.field;
  }
  return fields;
}
}  // namespace

NETWORK_COMMAND_NEW(NicStatsGet)

NicStatsGet::NicStatsGet() {
  SetDescription("Get NIC statistics for a given interface.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:" + kStructure, "NIC statistics for %" + kNicNameField + "%");
  SetDefaultOutputParameter("fields:" + kStructure, FieldList());
}

std::shared_ptr<MetaStruct> NicStatsGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNicNameField, MetaString::New());
  for (auto const& counter : kCounters) result->SetField(counter.field, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> NicStatsGet::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::NicName, "Name of the NIC to get statistics from.")});
}

std::shared_ptr<OutputSpec> NicStatsGet::GetOutputSpecInternal() {
  return RootSpec(MetaList::New(MetaType::Struct, GetOutputStructure()));
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
    for (auto const& counter : kCounters) {
      nic->SetField(counter.field, static_cast<unsigned long>(stats.*counter.member));
    }
    list->Add(nic);
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to get stats for NIC: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
