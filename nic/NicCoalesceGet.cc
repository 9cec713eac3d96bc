#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "nic/PnicLookup.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kStructure = "CoalesceParams";
const std::string kNic = "NIC";
const std::string kRxMicroseconds = "RX microseconds";
const std::string kRxMaximumFrames = "RX maximum frames";
const std::string kTxMicroseconds = "TX microseconds";
const std::string kTxMaximumFrames = "TX Maximum frames";
const std::string kAdaptiveRx = "Adaptive RX";
const std::string kAdaptiveTx = "Adaptive TX";
const std::string kSampleInterval = "Sample interval seconds";
const std::string kOn = "On";
const std::string kOff = "Off";
const std::string kNotAvailable = "N/A";

// The value fields, in the order of the record's columns.
const std::string* const kValueFields[] = {&kRxMicroseconds,  &kRxMaximumFrames, &kTxMicroseconds,
                                           &kTxMaximumFrames, &kAdaptiveRx,      &kAdaptiveTx,
                                           &kSampleInterval};
}  // namespace

NETWORK_COMMAND_NEW(NicCoalesceGet, Rows)

NicCoalesceGet::NicCoalesceGet() {
  SetDescription("Get coalesce parameters");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure, kNic + "," + kRxMicroseconds + "," +
                                                        kRxMaximumFrames + "," + kTxMicroseconds +
                                                        "," + kTxMaximumFrames + "," + kAdaptiveRx +
                                                        "," + kAdaptiveTx + "," + kSampleInterval);
}

std::shared_ptr<MetaStruct> NicCoalesceGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  for (auto const* field : kValueFields) result->SetField(*field, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> NicCoalesceGet::GetInputSpecInternal() {
  return InputSpecOf({Optional(Shared::Ornic, "The name of pnic to get coalesce parameters")});
}

void NicCoalesceGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto list = PnicRows(
        networkInfo, *input, kOrnic, *output, MissingPnicWords::NotFound,
        [this] { return GetOutputStructure(); },
        [](HostCtl::Network::Pnic& pnic, MetaStruct& row) {
          HostCtl::Network::PnicCoalesceParams params;
          pnic.GetCoalesceParams(params);
          row.SetField(kRxMicroseconds, std::to_string(params.rxMicroseconds));
          row.SetField(kRxMaximumFrames, std::to_string(params.rxMaxFrames));
          row.SetField(kTxMicroseconds, std::to_string(params.txMicroseconds));
          row.SetField(kTxMaximumFrames, std::to_string(params.txMaxFrames));
          row.SetField(kAdaptiveRx, params.adaptiveRx ? kOn : kOff);
          row.SetField(kAdaptiveTx, params.adaptiveTx ? kOn : kOff);
          row.SetField(kSampleInterval, std::to_string(params.sampleInterval));
        },
        [](MetaStruct& row) {
          for (auto const* field : kValueFields) row.SetField(*field, kNotAvailable);
        });
    if (list) output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
