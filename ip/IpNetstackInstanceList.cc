#include <string>

#include "hostctl/netstack.h"
#include "hostctl/network_info.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kKey = "Key";
const std::string kName = "Name";
const std::string kState = "State";
}  // namespace

NETWORK_COMMAND_NEW(IpNetstackInstanceList, Rows)

IpNetstackInstanceList::IpNetstackInstanceList() {
  SetDescription(
      "This command will list the Orvik Netstack instances currently known to the system.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("header:NetstackInstance", "%Key%");
  SetDefaultOutputParameter("fields:NetstackInstance", "Key,Name,State");
}

std::shared_ptr<MetaStruct> IpNetstackInstanceList::GetOutputStructure() {
  auto result = MetaStruct::New("NetstackInstance");
  result->SetField(kKey, MetaString::New());
  result->SetField(kName, MetaString::New());
  result->SetField(kState, MetaInt::New());
  return result;
}

std::shared_ptr<InputSpec> IpNetstackInstanceList::GetInputSpecInternal() {
  return InputSpec::New();
}

void IpNetstackInstanceList::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                                             std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::NetworkInfoImpl networkInfo;
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    for (auto const& instance : networkInfo.ListNetstackInstances()) {
      auto row = GetOutputStructure();
      row->SetField(kKey, instance->GetInstanceKey());
      row->SetField(kName, instance->GetInstanceName());
      row->SetField(kState, static_cast<long>(instance->GetState()));
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
