#include "nic/NicHwCapSupportedList.h"

#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicFeatureKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kStructure = "Settings";
const std::string kNic = "NIC";
const std::string kCapabilities = "Device Hardware Cap Supported";
}  // namespace

std::shared_ptr<NicHwCapSupportedList> NicHwCapSupportedList::New() {
  return std::shared_ptr<NicHwCapSupportedList>(new NicHwCapSupportedList());
}

NicHwCapSupportedList::NicHwCapSupportedList() {
  SetDescription("List supported hardware capabilities of physical NICs.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:Settings", "NIC,Device Hardware Cap Supported");
}

NicHwCapSupportedList::~NicHwCapSupportedList() = default;

std::shared_ptr<MetaStruct> NicHwCapSupportedList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  result->SetField(kCapabilities, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> NicHwCapSupportedList::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  spec->AddParameter(NewOrnicListParameter());
  return spec;
}

std::shared_ptr<OutputSpec> NicHwCapSupportedList::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaList::New(MetaType::Struct, GetOutputStructure()));
  return spec;
}

void NicHwCapSupportedList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                            std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    PnicRowFiller filler;
    filler.fill = [](HostCtl::Network::Pnic& pnic, MetaStruct& row) {
      HostCtl::Network::PnicHwCapabilities caps;
      pnic.GetHwCapabilities(caps);
      row.SetField(kCapabilities, HwCapText(caps.supported));
    };
    filler.fillNotAvailable = [](MetaStruct& row) { row.SetField(kCapabilities, kNotAvailable); };
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
