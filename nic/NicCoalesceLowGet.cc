#include "nic/NicCoalesceLowGet.h"

#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kOrnic = "ornic";
const std::string kStructure = "CoalesceParamsAtLowPacketRate";
const std::string kNic = "NIC";
const std::string kPacketRate = "Packet rate";
const std::string kRxDelayTime = "RX delay time";
const std::string kRxDelayPackets = "RX delay packets";
const std::string kTxDelayTime = "TX delay time";
const std::string kTxDelayPackets = "TX delay packets";
const std::string kMicrosecond = "microsecond";
}  // namespace

std::shared_ptr<NicCoalesceLowGet> NicCoalesceLowGet::New() {
  return std::shared_ptr<NicCoalesceLowGet>(new NicCoalesceLowGet());
}

NicCoalesceLowGet::NicCoalesceLowGet() {
  SetDescription(
      "Get information about the behavior of a NIC when it sends or receives packets at low "
      "packet rate.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:" + kStructure, kNic + "," + kPacketRate + "," + kRxDelayTime +
                                                        "," + kRxDelayPackets + "," + kTxDelayTime +
                                                        "," + kTxDelayPackets);
  SetDefaultOutputParameter("units:" + kStructure + "." + kPacketRate, "pps");
  SetDefaultOutputParameter("units:" + kStructure + "." + kRxDelayTime, kMicrosecond);
  SetDefaultOutputParameter("units:" + kStructure + "." + kTxDelayTime, kMicrosecond);
}

NicCoalesceLowGet::~NicCoalesceLowGet() = default;

std::shared_ptr<MetaStruct> NicCoalesceLowGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  result->SetField(kPacketRate, MetaInt::New());
  result->SetField(kRxDelayTime, MetaInt::New());
  result->SetField(kRxDelayPackets, MetaInt::New());
  result->SetField(kTxDelayTime, MetaInt::New());
  result->SetField(kTxDelayPackets, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> NicCoalesceLowGet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("The name of the pnic for which information should be retrieved.");
  spec->AddParameter(ornic);
  return spec;
}

std::shared_ptr<OutputSpec> NicCoalesceLowGet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(GetOutputStructure());
  return spec;
}

void NicCoalesceLowGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = networkInfo->GetPnicByName(name);
    if (!pnic) throw HostCtl::Lib::HostCtlException("Pnic with name " + name + " not found");
    auto result = GetOutputStructure();
    result->SetField(kNic, name);
    HostCtl::Network::PnicCoalesceParams params;
    pnic->GetCoalesceParams(params);
    result->SetField(kPacketRate, params.lowPacketRate);
    result->SetField(kRxDelayTime, params.rxMicrosecondsLow);
    result->SetField(kRxDelayPackets, params.rxMaxFramesLow);
    result->SetField(kTxDelayTime, params.txMicrosecondsLow);
    result->SetField(kTxDelayPackets, params.txMaxFramesLow);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
