#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "nic/NicFeatureKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kStructure = "Settings";
const std::string kNic = "NIC";
const std::string kOn = "on";
const std::string kOff = "off";
}  // namespace

NETWORK_COMMAND_NEW(NicSoftwareList, Rows)

NicSoftwareList::NicSoftwareList() {
  SetDescription(
      "List software simulation settings of physical NICs currently installed and loaded on the "
      "system.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(
      "fields:Settings",
      "NIC,IPv4 CSO,IPv4 TSO,Scatter Gather,Offset Based Offload,VXLAN Encap,Geneve Offload,IPv6 "
      "TSO,IPv6 TSO Ext,IPv6 CSO,IPv6 CSO Ext,High DMA,Scatter Gather MP,VLAN Tagging,VLAN "
      "Untagging");
}

std::shared_ptr<MetaStruct> NicSoftwareList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  for (auto const& setting : kSoftwareSimulationSettings) {
    result->SetField(setting.column, MetaString::New());
  }
  return result;
}

std::shared_ptr<InputSpec> NicSoftwareList::GetInputSpecInternal() {
  return InputSpecOf({NewOrnicListParameter()});
}

void NicSoftwareList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    PnicRowFiller filler;
    filler.fill = [](HostCtl::Network::Pnic& pnic, MetaStruct& row) {
      HostCtl::Network::PnicSoftwareSimulation settings;
      pnic.GetSoftwareSimulation(settings);
      for (auto const& setting : kSoftwareSimulationSettings) {
        row.SetField(setting.column, settings.*setting.value ? kOn : kOff);
      }
    };
    filler.fillNotAvailable = [](MetaStruct& row) {
      for (auto const& setting : kSoftwareSimulationSettings) {
        row.SetField(setting.column, kNotAvailable);
      }
    };
    if (!ListPnicRows(
            *networkInfo, *input, *output, *list, [this] { return GetOutputStructure(); },
            filler)) {
      return;
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
