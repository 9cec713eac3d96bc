#include <cstdint>
#include <cstdlib>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/CounterKit.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
using HostCtl::Network::SriovNicVFStats;

const std::string kVfIdParameter = "vf-id";
// The directives name the types "VF" and "VFStats" although the record is
// "VfStats", and the header a field "vf" that the record lacks; both stay.
const std::string kStructure = "VfStats";
const std::string kNicNameField = "NIC Name";
const std::string kVfIdField = "VF ID";

// The counters as shown, in the order shown.
const Counter<SriovNicVFStats> kCounters[] = {
    {"Rx Unicast Pkt", &SriovNicVFStats::rxUnicastPkts},
    {"Rx Unicast Bytes", &SriovNicVFStats::rxUnicastBytes},
    {"Rx Multicast Pkts", &SriovNicVFStats::rxMulticastPkts},
    {"Rx Multicast Bytes", &SriovNicVFStats::rxMulticastBytes},
    {"Rx Broadcast Pkts", &SriovNicVFStats::rxBroadcastPkts},
    {"Rx Broadcast Bytes", &SriovNicVFStats::rxBroadcastBytes},
    {"Rx Out of Buffer drops", &SriovNicVFStats::rxOutOfBufferDrops},
    {"Rx Error drops", &SriovNicVFStats::rxErrorDrops},
    {"Rx LRO Pkts", &SriovNicVFStats::rxLroPkts},
    {"Rx LRO Bytes", &SriovNicVFStats::rxLroBytes},
    {"Tx Unicast Pkt", &SriovNicVFStats::txUnicastPkts},
    {"Tx Unicast Bytes", &SriovNicVFStats::txUnicastBytes},
    {"Tx Multicast Pkts", &SriovNicVFStats::txMulticastPkts},
    {"Tx Multicast Bytes", &SriovNicVFStats::txMulticastBytes},
    {"Tx Broadcast Pkts", &SriovNicVFStats::txBroadcastPkts},
    {"Tx Broadcast Bytes", &SriovNicVFStats::txBroadcastBytes},
    {"Tx Errors", &SriovNicVFStats::txErrors},
    {"Tx Discards", &SriovNicVFStats::txDiscards},
    {"Tx TSO Pkts", &SriovNicVFStats::txTsoPkts},
    {"Tx TSO Bytes", &SriovNicVFStats::txTsoBytes},
};
}  // namespace

NETWORK_COMMAND_NEW(VfStats, Rows)

VfStats::VfStats() {
  SetDescription("Get statistics for given VF of a SRIOV NIC.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:VF", "Statistics for %vf% VF of %NIC Name%");
  SetDefaultOutputParameter("fields:VFStats", CounterFields<SriovNicVFStats>(kCounters));
}

std::shared_ptr<MetaStruct> VfStats::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNicNameField, MetaString::New());
  result->SetField(kVfIdField, MetaInt::New());
  AddCounterFields<SriovNicVFStats>(*result, kCounters);
  return result;
}

std::shared_ptr<InputSpec> VfStats::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::NicName,
                "The name of the SRIOV NIC. This must be one of the cards listed in the sriovNic "
                "list command."),
       Required(kVfIdParameter, ParameterType::Int, "v",
                "The VF ID of the virtual function whose stats are to be collected. This must be "
                "one of the VF IDs listed in the sriovnic vf list command.")});
}

void VfStats::ExecuteInternal(std::shared_ptr<Input> const& input,
                              std::shared_ptr<Output> const& output) {
  // Built before the guarded block: a failure here is not turned into a message.
  OrvkCtl::Network::NetworkInfoImpl networkInfo;
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    std::string const& name = input->GetParameter(kNicName);
    long vfId = std::strtol(input->GetParameter(kVfIdParameter).c_str(), nullptr, 10);
    if (!networkInfo.GetSriovNicByName(name)) {
      output->AddErrorMessage("There is no SRIOV Nic with name " + name);
      return;
    }
    SriovNicVFStats stats;
    networkInfo.GetSriovNicVFStats(&stats, name, static_cast<int>(vfId));
    auto entry = GetOutputStructure();
    entry->SetField(kNicNameField, name);
    entry->SetField(kVfIdField, vfId);
    FillCounters<SriovNicVFStats>(*entry, kCounters, stats);
    list->Add(entry);
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to get VF Stats. Error:" + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
