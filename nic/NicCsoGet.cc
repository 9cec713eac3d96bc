#include "nic/NicCsoGet.h"

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
const std::string kStructure = "CSOSettings";
const std::string kNic = "NIC";
const std::string kRxChecksumOffload = "RX Checksum Offload";
const std::string kTxChecksumOffload = "TX Checksum Offload";
const std::string kOn = "on";
const std::string kOff = "off";
const std::string kNotAvailable = "N/A";
}  // namespace

std::shared_ptr<NicCsoGet> NicCsoGet::New() { return std::shared_ptr<NicCsoGet>(new NicCsoGet()); }

NicCsoGet::NicCsoGet() {
  SetDescription("Get checksum offload settings");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure,
                            kNic + "," + kRxChecksumOffload + "," + kTxChecksumOffload);
}

NicCsoGet::~NicCsoGet() = default;

std::shared_ptr<MetaStruct> NicCsoGet::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kNic, MetaString::New());
  result->SetField(kRxChecksumOffload, MetaString::New());
  result->SetField(kTxChecksumOffload, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> NicCsoGet::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  auto ornic = ParameterSpec::New(kOrnic, ParameterType::String);
  ornic->SetRequired(false);
  ornic->SetShortName("n");
  ornic->SetDescription("The name of pnic to get CSO settings");
  spec->AddParameter(ornic);
  return spec;
}

std::shared_ptr<OutputSpec> NicCsoGet::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaList::New(MetaType::Struct, GetOutputStructure()));
  return spec;
}

void NicCsoGet::ExecuteInternal(std::shared_ptr<Input> const& input,
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
        nic->SetField(kRxChecksumOffload, params.rxChecksum ? kOn : kOff);
        nic->SetField(kTxChecksumOffload, params.txChecksum ? kOn : kOff);
      } catch (HostCtl::Lib::HostCtlException const&) {
        nic->SetField(kRxChecksumOffload, kNotAvailable);
        nic->SetField(kTxChecksumOffload, kNotAvailable);
      }
      list->Add(nic);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
