#include "nic/NicCoalesceHighSet.h"

#include <cstdint>
#include <memory>
#include <string>

#include "frame/ParamRange.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kOrnic = "ornic";
const std::string kPktRate = "pkt-rate";
const std::string kRxUsecs = "rx-usecs";
const std::string kRxMaxFrames = "rx-max-frames";
const std::string kTxUsecs = "tx-usecs";
const std::string kTxMaxFrames = "tx-max-frames";

std::shared_ptr<ParameterSpec> Optional(std::string const& name, char const* shortName,
                                        char const* description) {
  auto parameter = ParameterSpec::New(name, ParameterType::Int);
  parameter->SetRequired(false);
  parameter->SetShortName(shortName);
  parameter->SetDescription(description);
  return parameter;
}
}  // namespace

std::shared_ptr<NicCoalesceHighSet> NicCoalesceHighSet::New() {
  return std::shared_ptr<NicCoalesceHighSet>(new NicCoalesceHighSet());
}

NicCoalesceHighSet::NicCoalesceHighSet() {
  SetDescription(
      "Set parameters to control the behavior of a NIC when it sends or receives packets at "
      "high packet rate.");
}

NicCoalesceHighSet::~NicCoalesceHighSet() = default;

std::shared_ptr<InputSpec> NicCoalesceHighSet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(true);
  ornic->SetShortName("n");
  ornic->SetDescription("Name of the ornic for which parameters should be set.");
  spec->AddParameter(ornic);
  spec->AddParameter(
      Optional(kPktRate, "p",
               "The high packet rate measured in number of packets per second. When packet rate is "
               "above this parameter, the RX/TX coalescing parameters configured by this command "
               "are used."));
  spec->AddParameter(Optional(kRxUsecs, "r",
                              "The number of microseconds to delay an RX interrupt after a packet "
                              "arrives under high packet rate conditions."));
  spec->AddParameter(Optional(kRxMaxFrames, "R",
                              "The maximum number of RX packets to delay an RX interrupt after "
                              "they arrive under high packet rate conditions."));
  spec->AddParameter(Optional(kTxUsecs, "t",
                              "The number of microseconds to delay a TX interrupt after a packet "
                              "is sent under high packet rate conditions."));
  spec->AddParameter(Optional(kTxMaxFrames, "T",
                              "The maximum number of TX packets to delay an TX interrupt after "
                              "they are sent under high packet rate conditions."));
  return spec;
}

std::shared_ptr<OutputSpec> NicCoalesceHighSet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void NicCoalesceHighSet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  try {
    std::string const& name = input->GetParameter(kOrnic);
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto pnic = networkInfo->GetPnicByName(name);
    if (!pnic) {
      output->AddErrorMessage("Pnic with name " + name + " not found");
      return;
    }
    HostCtl::Network::PnicCoalesceParams params;
    pnic->GetCoalesceParams(params);
    bool fits = true;
    auto number = [&](std::string const& parameter, uint32_t& field) {
      fits = TakeParamUint32(*input, *output, parameter, field) && fits;
    };
    number(kPktRate, params.highPacketRate);
    number(kRxUsecs, params.rxMicrosecondsHigh);
    number(kRxMaxFrames, params.rxMaxFramesHigh);
    number(kTxUsecs, params.txMicrosecondsHigh);
    number(kTxMaxFrames, params.txMaxFramesHigh);
    if (!fits) return;
    pnic->SetCoalesceParams(params);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
