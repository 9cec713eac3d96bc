#include <algorithm>
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
const std::string kFilterName = "Filter name";
const std::string kFilterDirection = "Filter direction";
const std::string kPacketsIn = "Packets in";
const std::string kPacketsOut = "Packets out";
const std::string kPacketsDropped = "Packets dropped";
const std::string kPacketsFiltered = "Packets filtered";
const std::string kPacketsFaulted = "Packets faulted";
const std::string kPacketsQueued = "Packets queued";
const std::string kPacketsInjected = "Packets injected";
const std::string kPacketErrors = "Packet errors";
const std::string kTransmit = "Transmit";
const std::string kReceive = "Receive";
// A port of this type sees its two chains the other way round.
constexpr int kReversedPortType = 4;
}  // namespace

bool sortFilterStats(std::unique_ptr<HostCtl::Network::FilterStats> const& a,
                     std::unique_ptr<HostCtl::Network::FilterStats> const& b) {
  if (a->isOutbound != b->isOutbound) return !a->isOutbound;
  return a->isOutbound ? b->chainKey < a->chainKey : a->chainKey < b->chainKey;
}

NETWORK_COMMAND_NEW(PortFilterStatsGet, Rows)

PortFilterStatsGet::PortFilterStatsGet() {
  SetDescription("Filter statistics for a given port.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:Filter", "Filter statistics for %Filter name%");
  SetDefaultOutputParameter("fields:Filter",
                            "Filter direction,Packets in,Packets out,Packets dropped,Packets "
                            "filtered,Packets faulted,Packets queued,Packets injected,Packet "
                            "errors");
}

std::shared_ptr<MetaStruct> PortFilterStatsGet::GetOutputStructure() {
  auto result = MetaStruct::New("Filter");
  result->SetField(kFilterName, MetaString::New());
  result->SetField(kFilterDirection, MetaString::New());
  for (auto const* field : {&kPacketsIn, &kPacketsOut, &kPacketsDropped, &kPacketsFiltered,
                            &kPacketsFaulted, &kPacketsQueued, &kPacketsInjected, &kPacketErrors}) {
    result->SetField(*field, MetaInt::New());
  }
  return result;
}

std::shared_ptr<InputSpec> PortFilterStatsGet::GetInputSpecInternal() {
  return InputSpecOf({Required(kPortid, ParameterType::Int, "p",
                               "Port ID for the port to get filter statistics.")});
}

void PortFilterStatsGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    long wanted = std::strtol(input->GetParameter(kPortid).c_str(), nullptr, 10);
    bool found = VisitPortById(wanted, *output, [&](OrvkCtl::Network::PortImpl& port) {
      auto filters = port.GetFilterStats();
      std::sort(filters.begin(), filters.end(), sortFilterStats);
      for (auto const& filter : filters) {
        if (!filter->active) continue;
        bool reversed = port.GetType() == kReversedPortType;
        auto row = GetOutputStructure();
        row->SetField(kFilterName, filter->name);
        row->SetField(kFilterDirection, filter->isOutbound != reversed ? kTransmit : kReceive);
        row->SetField(kPacketsIn, static_cast<long>(filter->packetsIn));
        row->SetField(kPacketsOut, static_cast<long>(filter->packetsOut));
        row->SetField(kPacketsDropped, static_cast<long>(filter->packetsDropped));
        if (filter->hasDetail) {
          row->SetField(kPacketsFiltered, static_cast<long>(filter->packetsFiltered));
          row->SetField(kPacketsFaulted, static_cast<long>(filter->packetsFaulted));
          row->SetField(kPacketsQueued, static_cast<long>(filter->packetsQueued));
          row->SetField(kPacketsInjected, static_cast<long>(filter->packetsInjected));
          row->SetField(kPacketErrors, static_cast<long>(filter->packetErrors));
        }
        list->Add(row);
      }
    });
    if (!found) return;
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to get filter stats for port: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
