#include <memory>
#include <string>
#include <vector>

#include "hostctl/host.h"
#include "hostctl/network_info.h"
#include "hostctl/orvk_nic.h"
#include "runtime/RuntimeCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
// The directive names a type the rows don't have: the table keeps the
// structure's own field order.
const std::string kStructure = "Nic";
const std::string kInterface = "Interface";
const std::string kRefcount = "Refcount";
const std::string kGroup = "Group";
const std::string kLinkLayer = "Link Layer";
}  // namespace

NETWORK_COMMAND_NEW(MulticastGroupList, Rows)

MulticastGroupList::MulticastGroupList() {
  SetDescription("List all the multicast group members.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:Interface", "Interface,Refcount,Group,Link Layer");
}

std::shared_ptr<MetaStruct> MulticastGroupList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kInterface, MetaString::New());
  result->SetField(kRefcount, MetaInt::New());
  result->SetField(kGroup, MetaString::New());
  result->SetField(kLinkLayer, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> MulticastGroupList::GetInputSpecInternal() { return InputSpec::New(); }

void MulticastGroupList::ExecuteInternal(std::shared_ptr<Input> const&,
                                         std::shared_ptr<Output> const& output) {
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    HostCtl::HostFactory::GetHost();
    std::unique_ptr<HostCtl::Network::OrvikNicInfo> nicInfo;
    {
      auto networkInfo = HostCtl::Host::GetNetworkInfo();
      nicInfo = networkInfo->GetOrvikNicInfo();
    }
    for (auto const& nic : nicInfo->GetOrvikNics()) {
      std::vector<HostCtl::Network::OrvkNic::MulticastGroup> groups;
      nic->GetMulticastGroups(groups);
      for (auto const& group : groups) {
        auto row = GetOutputStructure();
        row->SetField(kInterface, group.interface);
        row->SetField(kRefcount, static_cast<long>(group.refcount));
        row->SetField(kGroup, group.group);
        row->SetField(kLinkLayer, group.linkLayer);
        list->Add(row);
      }
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
