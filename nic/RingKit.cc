#include "nic/RingKit.h"

#include <cstdint>

#include "frame/CommandKit.h"
#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/PnicLookup.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using Toolbase::MetaObj::MetaInt;
using Toolbase::MetaObj::MetaStruct;

namespace {
const std::string kStructure = "RingInfo";
// The names of the rings, in the record's order; the preset view shows its
// maximums under both.
const std::string kNames[4] = {"RX", "RX Mini", "RX Jumbo", "TX"};
const std::string kMaxNames[4] = {"Max RX", "Max RX Mini", "Max RX Jumbo", "Max TX"};
}  // namespace

const std::string kRingFieldsDirective = "fields:" + kStructure;

std::shared_ptr<MetaStruct> RingStructure(RingView view) {
  auto result = MetaStruct::New(kStructure);
  for (auto const& name : kNames) result->SetField(name, MetaInt::New());
  if (view == RingView::Preset) {
    for (auto const& name : kMaxNames) result->SetField(name, MetaInt::New());
  }
  return result;
}

std::string RingFields(RingView view) {
  auto const& names = view == RingView::Preset ? kMaxNames : kNames;
  return names[0] + "," + names[1] + "," + names[2] + "," + names[3];
}

bool ReadRing(HostCtl::Network::NetworkInfo& networkInfo, Toolbase::CallSpec::Input const& input,
              Toolbase::CallSpec::Output& output, RingView view, MetaStruct& row) {
  auto pnic = FindNamedPnic(networkInfo, input.GetParameter(kNicName), output,
                            MissingPnicWords::NicNotFound);
  if (!pnic) return false;
  HostCtl::Network::PnicRingParams preset;
  HostCtl::Network::PnicRingParams current;
  pnic->GetRingParams(preset, current);
  auto const& shown = view == RingView::Preset ? preset : current;
  uint32_t const values[4] = {shown.rx, shown.rxMini, shown.rxJumbo, shown.tx};
  for (int i = 0; i < 4; ++i) row.SetField(kNames[i], values[i]);
  if (view == RingView::Preset) {
    for (int i = 0; i < 4; ++i) row.SetField(kMaxNames[i], values[i]);
  }
  return true;
}

}  // namespace CorvaneCli::NetworkNamespace
