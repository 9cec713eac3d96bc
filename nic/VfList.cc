#include <string>

#include "hostctl/network_info.h"
#include "hostctl/pnic.h"
#include "nic/NicCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kStructure = "VFList";
const std::string kVfId = "VF ID";
const std::string kActive = "Active";
const std::string kPciAddress = "PCI Address";
const std::string kOwnerWorldId = "Owner World ID";
}  // namespace

NETWORK_COMMAND_NEW(VfList, Rows)

VfList::VfList() {
  SetDescription("Get the generic configuration of VFs for SRIOV NIC.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure, "VF ID,Active,PCI Address,Owner World ID");
}

std::shared_ptr<MetaStruct> VfList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kVfId, MetaInt::New());
  result->SetField(kActive, MetaBool::New());
  result->SetField(kPciAddress, MetaString::New());
  result->SetField(kOwnerWorldId, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> VfList::GetInputSpecInternal() {
  return InputSpecOf({Required(Shared::NicName,
                               "The name of the SRIOV NIC to configured. This must be one of the "
                               "cards listed in the sriovNic list command.")});
}

void VfList::ExecuteInternal(std::shared_ptr<Input> const& input,
                             std::shared_ptr<Output> const& output) {
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    std::string const& name = input->GetParameter(kNicName);
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    if (!networkInfo.GetSriovNicByName(name)) {
      output->AddErrorMessage("There is no SRIOV Nic with name " + name);
      return;
    }
    for (auto const& vf : networkInfo.GetSriovNicVFInfo(name)) {
      auto entry = GetOutputStructure();
      entry->SetField(kVfId, static_cast<unsigned int>(vf.vfId));
      entry->SetField(kActive, vf.active);
      entry->SetField(kPciAddress, vf.pciAddress);
      entry->SetField(kOwnerWorldId, vf.ownerWorldId);
      list->Add(entry);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to get VF Info. Error:" + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
