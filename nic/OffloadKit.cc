#include "nic/OffloadKit.h"

#include "frame/CommandKit.h"
#include "hostctl/network_info.h"
#include "nic/PnicLookup.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using HostCtl::Network::PnicOffloadParams;
using namespace Toolbase::MetaObj;

namespace {
const std::string kEnable = "enable";
const std::string kNic = "NIC";
const std::string kOn = "on";
const std::string kOff = "off";
const std::string kNotAvailable = "N/A";
}  // namespace

const OffloadKind kChecksumOffload{
    "CSOSettings",
    {{"RX Checksum Offload", &PnicOffloadParams::rxChecksum},
     {"TX Checksum Offload", &PnicOffloadParams::txChecksum}},
    2,
    PnicOffloadParams::MASK_RX_CHECKSUM | PnicOffloadParams::MASK_TX_CHECKSUM};
const OffloadKind kSegmentationOffload{"TSOSettings",
                                       {{"Value", &PnicOffloadParams::tcpSegmentation}, {}},
                                       1,
                                       PnicOffloadParams::MASK_TCP_SEGMENTATION};
const OffloadKind kScatterGather{"ScatterGatherSetting",
                                 {{"Value", &PnicOffloadParams::scatterGather}, {}},
                                 1,
                                 PnicOffloadParams::MASK_SCATTER_GATHER};

std::shared_ptr<MetaStruct> OffloadStructure(OffloadKind const& kind) {
  auto result = MetaStruct::New(kind.structure);
  result->SetField(kNic, MetaString::New());
  for (auto const& column : kind) result->SetField(column.field, MetaString::New());
  return result;
}

std::string OffloadFields(OffloadKind const& kind) {
  std::string fields = kNic;
  for (auto const& column : kind) fields += std::string(",") + column.field;
  return fields;
}

std::shared_ptr<MetaList> ListOffload(HostCtl::Network::NetworkInfo& networkInfo,
                                      Toolbase::CallSpec::Input const& input,
                                      Toolbase::CallSpec::Output& output, OffloadKind const& kind) {
  return PnicRows(
      networkInfo, input, kOrnic, output, MissingPnicWords::NotFound,
      [&] { return OffloadStructure(kind); },
      [&](HostCtl::Network::Pnic& pnic, MetaStruct& row) {
        PnicOffloadParams params;
        pnic.GetOffloadParams(params);
        for (auto const& column : kind) {
          row.SetField(column.field, params.*column.flag ? kOn : kOff);
        }
      },
      [&](MetaStruct& row) {
        for (auto const& column : kind) row.SetField(column.field, kNotAvailable);
      });
}

void SetOffload(HostCtl::Network::NetworkInfo& networkInfo, Toolbase::CallSpec::Input const& input,
                Toolbase::CallSpec::Output& output, OffloadKind const& kind) {
  auto pnic = FindNamedPnic(networkInfo, input.GetParameter(kOrnic), output);
  if (!pnic) return;
  PnicOffloadParams params;
  pnic->GetOffloadParams(params);
  bool const enable = input.GetParameterInt(kEnable) != 0;
  params.mask = kind.mask;
  for (auto const& column : kind) params.*column.flag = enable;
  pnic->SetOffloadParams(params);
  output.SetRootObject(MetaBool::New(true));
}

}  // namespace CorvaneCli::NetworkNamespace
