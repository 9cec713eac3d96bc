#include "nic/CoalesceKit.h"

#include "frame/CommandKit.h"
#include "hostctl/network_info.h"
#include "nic/PnicLookup.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using HostCtl::Network::PnicCoalesceParams;
using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kPktRate = "pkt-rate";
const std::string kRxUsecs = "rx-usecs";
const std::string kRxMaxFrames = "rx-max-frames";
const std::string kTxUsecs = "tx-usecs";
const std::string kTxMaxFrames = "tx-max-frames";
const std::string kNic = "NIC";
const std::string kPacketRate = "Packet rate";
const std::string kRxDelayTime = "RX delay time";
const std::string kRxDelayPackets = "RX delay packets";
const std::string kTxDelayTime = "TX delay time";
const std::string kTxDelayPackets = "TX delay packets";
const std::string kMicrosecond = "microsecond";
}  // namespace

const CoalesceBand kLowBand{"low",
                            "below",
                            "CoalesceParamsAtLowPacketRate",
                            &PnicCoalesceParams::lowPacketRate,
                            &PnicCoalesceParams::rxMicrosecondsLow,
                            &PnicCoalesceParams::rxMaxFramesLow,
                            &PnicCoalesceParams::txMicrosecondsLow,
                            &PnicCoalesceParams::txMaxFramesLow};
const CoalesceBand kHighBand{"high",
                             "above",
                             "CoalesceParamsAtHighPacketRate",
                             &PnicCoalesceParams::highPacketRate,
                             &PnicCoalesceParams::rxMicrosecondsHigh,
                             &PnicCoalesceParams::rxMaxFramesHigh,
                             &PnicCoalesceParams::txMicrosecondsHigh,
                             &PnicCoalesceParams::txMaxFramesHigh};

std::vector<std::pair<std::string, std::string>> BandDirectives(CoalesceBand const& band) {
  std::string const s = band.structure;
  return {{"fields:" + s, kNic + "," + kPacketRate + "," + kRxDelayTime + "," + kRxDelayPackets +
                              "," + kTxDelayTime + "," + kTxDelayPackets},
          {"units:" + s + "." + kPacketRate, "pps"},
          {"units:" + s + "." + kRxDelayTime, kMicrosecond},
          {"units:" + s + "." + kTxDelayTime, kMicrosecond}};
}

std::shared_ptr<MetaStruct> BandStructure(CoalesceBand const& band) {
  auto result = MetaStruct::New(band.structure);
  result->SetField(kNic, MetaString::New());
  for (auto const* field :
       {&kPacketRate, &kRxDelayTime, &kRxDelayPackets, &kTxDelayTime, &kTxDelayPackets}) {
    result->SetField(*field, MetaInt::New());
  }
  return result;
}

std::shared_ptr<MetaStruct> ReadBand(Input const& input, CoalesceBand const& band) {
  std::string const& name = input.GetParameter(kOrnic);
  auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
  auto pnic = networkInfo->GetPnicByName(name);
  if (!pnic) {
    throw HostCtl::Lib::HostCtlException(MissingPnicMessage(MissingPnicWords::NotFound, name));
  }
  auto result = BandStructure(band);
  result->SetField(kNic, name);
  PnicCoalesceParams params;
  pnic->GetCoalesceParams(params);
  result->SetField(kPacketRate, params.*band.packetRate);
  result->SetField(kRxDelayTime, params.*band.rxMicroseconds);
  result->SetField(kRxDelayPackets, params.*band.rxMaxFrames);
  result->SetField(kTxDelayTime, params.*band.txMicroseconds);
  result->SetField(kTxDelayPackets, params.*band.txMaxFrames);
  return result;
}

void AddBandParameters(InputSpec& spec, CoalesceBand const& band) {
  std::string const conditions = " packet rate conditions.";
  spec.AddParameter(
      Required(Shared::Ornic, "Name of the ornic for which parameters should be set."));
  spec.AddParameter(Optional(kPktRate, ParameterType::Int, "p",
                             std::string("The ") + band.word +
                                 " packet rate measured in number of packets per second. When "
                                 "packet rate is " +
                                 std::string(band.side) +
                                 " this parameter, the RX/TX coalescing parameters configured by "
                                 "this command are used."));
  spec.AddParameter(Optional(kRxUsecs, ParameterType::Int, "r",
                             "The number of microseconds to delay an RX interrupt after a packet "
                             "arrives under " +
                                 std::string(band.word) + conditions));
  spec.AddParameter(Optional(kRxMaxFrames, ParameterType::Int, "R",
                             "The maximum number of RX packets to delay an RX interrupt after "
                             "they arrive under " +
                                 std::string(band.word) + conditions));
  spec.AddParameter(Optional(kTxUsecs, ParameterType::Int, "t",
                             "The number of microseconds to delay a TX interrupt after a packet "
                             "is sent under " +
                                 std::string(band.word) + conditions));
  spec.AddParameter(Optional(kTxMaxFrames, ParameterType::Int, "T",
                             "The maximum number of TX packets to delay an TX interrupt after "
                             "they are sent under " +
                                 std::string(band.word) + conditions));
}

void WriteBand(Input const& input, Output& output, CoalesceBand const& band) {
  std::string const& name = input.GetParameter(kOrnic);
  auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
  auto pnic = FindNamedPnic(*networkInfo, name, output);
  if (!pnic) return;
  PnicCoalesceParams params;
  pnic->GetCoalesceParams(params);
  TakeUint32(input, kPktRate, params.*band.packetRate);
  TakeUint32(input, kRxUsecs, params.*band.rxMicroseconds);
  TakeUint32(input, kRxMaxFrames, params.*band.rxMaxFrames);
  TakeUint32(input, kTxUsecs, params.*band.txMicroseconds);
  TakeUint32(input, kTxMaxFrames, params.*band.txMaxFrames);
  pnic->SetCoalesceParams(params);
  output.SetRootObject(MetaBool::New(true));
}

}  // namespace CorvaneCli::NetworkNamespace
