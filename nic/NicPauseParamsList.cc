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
const std::string kStructure = "PauseParamsSettings";
const std::string kNic = "NIC";
const std::string kSupported = "Pause Params Supported";
const std::string kAutoNegotiation = "Auto Negotiation";
const std::string kPauseRx = "Pause RX";
const std::string kPauseTx = "Pause TX";
const std::string kResolutionAvail = "Auto Negotiation Resolution Avail";
const std::string kRxResolution = "RX Auto Negotiation Resolution";
const std::string kTxResolution = "TX Auto Negotiation Resolution";

// The seven settings of a row, in the order they are set.
struct PauseRow {
  bool supported = false;
  bool rx = false;
  bool tx = false;
  bool autoNegotiation = false;
  bool resolutionAvail = false;
  bool rxResolution = false;
  bool txResolution = false;
};

PauseRow RowOf(HostCtl::Network::PnicPauseParams const& params) {
  PauseRow row;
  if (!params.supported) return row;
  row.supported = true;
  row.rx = params.rx;
  row.tx = params.tx;
  row.autoNegotiation = params.autoNegotiation;
  if (params.rxResolution != 0 && params.txResolution != 0) {
    row.resolutionAvail = true;
    row.rxResolution = params.rxResolution == 1;
    row.txResolution = params.txResolution == 1;
  }
  return row;
}

// Sets the seven fields of a row, in the order they are set.
void SetPauseFields(MetaStruct& row, PauseRow const& values) {
  row.SetField(kSupported, values.supported);
  row.SetField(kPauseRx, values.rx);
  row.SetField(kPauseTx, values.tx);
  row.SetField(kAutoNegotiation, values.autoNegotiation);
  row.SetField(kResolutionAvail, values.resolutionAvail);
  row.SetField(kRxResolution, values.rxResolution);
  row.SetField(kTxResolution, values.txResolution);
}
}  // namespace

NETWORK_COMMAND_NEW(NicPauseParamsList, Rows)

NicPauseParamsList::NicPauseParamsList() {
  SetDescription("List pause parameters of all NICs");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(
      "fields:PauseParamsSettings",
      "NIC,Pause Params Supported,Pause RX,Pause TX,Auto Negotiation,Auto Negotiation Resolution "
      "Avail,RX Auto Negotiation Resolution,TX Auto Negotiation Resolution");
}

std::shared_ptr<MetaStruct> NicPauseParamsList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  result->SetField(kSupported, MetaBool::New());
  result->SetField(kAutoNegotiation, MetaBool::New());
  result->SetField(kPauseRx, MetaBool::New());
  result->SetField(kPauseTx, MetaBool::New());
  result->SetField(kResolutionAvail, MetaBool::New());
  result->SetField(kRxResolution, MetaBool::New());
  result->SetField(kTxResolution, MetaBool::New());
  return result;
}

std::shared_ptr<InputSpec> NicPauseParamsList::GetInputSpecInternal() {
  return InputSpecOf({Optional(Shared::NicName,
                               "The name of the NIC whose pause parameters should be retrieved.")});
}

void NicPauseParamsList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                         std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto list = PnicRows(
        *networkInfo, *input, kNicName, *output, MissingPnicWords::NicNotFound,
        [this] { return GetOutputStructure(); },
        [](HostCtl::Network::Pnic& pnic, MetaStruct& row) {
          HostCtl::Network::PnicPauseParams params;
          pnic.GetPauseParams(params);
          SetPauseFields(row, RowOf(params));
        },
        [](MetaStruct& row) { SetPauseFields(row, PauseRow()); });
    if (list) output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
