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
const std::string kTrunk = "trunk";
const std::string kStructure = "AttachmentInfo";
const std::string kTrunkField = "Trunk";
const std::string kBranchField = "Branch";
const std::string kBranchMacField = "Branch MAC";
const std::string kVlanIdField = "VLAN ID";
}  // namespace

NETWORK_COMMAND_NEW(NicAttachmentList, Rows)

NicAttachmentList::NicAttachmentList() {
  SetDescription("Show uplink attachment information.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:" + kStructure, "Trunk,Branch,Branch MAC,VLAN ID");
}

std::shared_ptr<MetaStruct> NicAttachmentList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kTrunkField, MetaString::New());
  result->SetField(kBranchField, MetaString::New());
  result->SetField(kBranchMacField, MetaString::New());
  result->SetField(kVlanIdField, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> NicAttachmentList::GetInputSpecInternal() {
  return InputSpecOf({Optional(kTrunk, ParameterType::String, "t",
                               "Show information only for the specified NIC.")});
}

void NicAttachmentList::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  try {
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    HostCtl::Network::PnicList pnics;
    if (input->HasParameter(kTrunk)) {
      std::string const& name = input->GetParameter(kTrunk);
      auto pnic = networkInfo->GetPnicByName(name);
      if (!pnic) {
        output->AddErrorMessage("Invalid PNIC name " + name);
        return;
      }
      pnics.push_back(std::move(pnic));
    } else {
      pnics = networkInfo->GetPnics();
    }
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    for (auto const& pnic : pnics) {
      if (!pnic) continue;
      auto attachments = pnic->GetAttachments();
      list->Reserve(list->GetCount() + attachments.size());
      for (auto const& attachment : attachments) {
        auto entry = GetOutputStructure();
        entry->SetField(kTrunkField, pnic->GetName());
        entry->SetField(kBranchField, attachment.branch);
        OrvkCtl::Network::PnicImpl branch(attachment.branch);
        entry->SetField(kBranchMacField, branch.GetMacAddress().GetStringAddress());
        entry->SetField(kVlanIdField, static_cast<unsigned int>(attachment.vlanId));
        list->Add(entry);
      }
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Unable to list uplink's attachment info: " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
