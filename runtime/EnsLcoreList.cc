#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "runtime/RuntimeCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kStructure = "Ens";
const std::string kLcoreId = "Lcore ID";
const std::string kSwitch = "Switch";
const std::string kAffinity = "Affinity";
}  // namespace

NETWORK_COMMAND_NEW(EnsLcoreList, Rows)

EnsLcoreList::EnsLcoreList() {
  SetDescription("List ENS contexts.");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter("fields:Ens", "Lcore ID,Switch,Affinity");
}

std::shared_ptr<MetaStruct> EnsLcoreList::GetOutputStructure() {
  auto result = MetaStruct::New(kStructure);
  result->SetField(kLcoreId, MetaInt::New());
  result->SetField(kSwitch, MetaString::New());
  result->SetField(kAffinity, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> EnsLcoreList::GetInputSpecInternal() { return InputSpec::New(); }

void EnsLcoreList::ExecuteInternal(std::shared_ptr<Input> const&,
                                   std::shared_ptr<Output> const& output) {
  using HostCtl::Network::NetworkInfo;
  try {
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    auto const ids = NetworkInfo::GetLcoreList();
    list->Reserve(ids.size());
    for (unsigned long id : ids) {
      auto row = GetOutputStructure();
      row->SetField(kLcoreId, id);
      row->SetField(kSwitch, NetworkInfo::GetLcoreSwitch(id));
      row->SetField(kAffinity, static_cast<long>(NetworkInfo::GetLcoreAffinity(id)));
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
