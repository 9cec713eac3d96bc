#include "nic/NicTsoGet.h"

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
const std::string kStructure = "TSOSettings";
const std::string kNic = "NIC";
const std::string kValue = "Value";
const std::string kOn = "on";
const std::string kOff = "off";
const std::string kNotAvailable = "N/A";
}  // namespace

std::shared_ptr<NicTsoGet> NicTsoGet::New() { return std::shared_ptr<NicTsoGet>(new NicTsoGet()); }

NicTsoGet::NicTsoGet() {
  SetDescription("Get TCP segmentation offload settings");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure, kNic + "," + kValue);
}

NicTsoGet::~NicTsoGet() = default;

std::shared_ptr<MetaStruct> NicTsoGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  result->SetField(kValue, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> NicTsoGet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(false);
  ornic->SetShortName("n");
  ornic->SetDescription("The name of pnic to get TSO settings");
  spec->AddParameter(ornic);
  return spec;
}

std::shared_ptr<OutputSpec> NicTsoGet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaList::New(MetaType::Struct, GetOutputStructure()));
  return spec;
}

void NicTsoGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    HostCtl::Network::PnicList pnics;
    if (input->HasParameter(kOrnic)) {
      std::string const& name = input->GetParameter(kOrnic);
      auto pnic = networkInfo.GetPnicByName(name);
      if (!pnic) {
        output->AddErrorMessage("Pnic with name " + name + " not found");
        return;
      }
      pnics.push_back(std::move(pnic));
    } else {
      pnics = networkInfo.GetPnics();
    }
    for (auto const& pnic : pnics) {
      auto nic = GetOutputStructure();
      nic->SetField(kNic, pnic->GetName());
      try {
        HostCtl::Network::PnicOffloadParams params;
        pnic->GetOffloadParams(params);
        nic->SetField(kValue, params.tcpSegmentation ? kOn : kOff);
      } catch (HostCtl::Lib::HostCtlException const&) {
        nic->SetField(kValue, kNotAvailable);
      }
      list->Add(nic);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
