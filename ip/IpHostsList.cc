#include <string>

#include "hostctl/dns.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kIpAddress = "IP address";
const std::string kHostName = "HostName";
const std::string kAliases = "Aliases";
const std::string kComment = "Comment";
}  // namespace

NETWORK_COMMAND_NEW(IpHostsList, Rows)

IpHostsList::IpHostsList() {
  SetDescription("List the user specified associations of IP addresses with host names.");
  SetDefaultOutputFormatter("simple");
  SetDefaultOutputParameter("fields:IpHostList", "IP address,HostName,Aliases,Comment");
}

std::shared_ptr<MetaStruct> IpHostsList::GetOutputStructure() {
  auto result = MetaStruct::New("IpHostList");
  result->SetField(kIpAddress, MetaString::New());
  result->SetField(kHostName, MetaString::New());
  result->SetField(kAliases, MetaList::New(MetaType::String));
  result->SetField(kComment, MetaString::New());
  return result;
}

std::shared_ptr<InputSpec> IpHostsList::GetInputSpecInternal() { return InputSpec::New(); }

void IpHostsList::ExecuteInternal(std::shared_ptr<Input> const& /*input*/,
                                  std::shared_ptr<Output> const& output) {
  try {
    OrvkCtl::Network::HostsFile hostsFile;
    auto entries = hostsFile.GetEntriesFromConfig();
    auto list = MetaList::New(MetaType::Struct, GetOutputStructure());
    list->Reserve(entries.size());
    for (auto const& entry : entries) {
      auto row = GetOutputStructure();
      row->SetField(kIpAddress, entry->GetIpAddress());
      row->SetField(kHostName, entry->GetHostName());
      auto aliases = MetaList::New(MetaType::String);
      for (auto const& alias : entry->GetAliases()) aliases->Add(alias);
      row->SetField(kAliases, aliases);
      row->SetField(kComment, entry->GetComment());
      list->Add(row);
    }
    output->SetRootObject(list);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
