#include <string>
#include <vector>

#include "hostctl/orvk_nic.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

namespace {
const std::string kTags = "Tags";
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceTagGet, Struct)

IpInterfaceTagGet::IpInterfaceTagGet() {
  SetDescription("Gets the tags set on the given Orvik network interface.");
  SetDefaultOutputFormatter("simple");
  // The first key is registered as spelled; it names no struct of this
  // command's output.
  SetDefaultOutputParameter("fields:IntefaceTag", "Tags");
  SetDefaultOutputParameter("header:InterfaceTag", "<NONE>");
}

std::shared_ptr<MetaStruct> IpInterfaceTagGet::GetOutputStructure() {
  auto result = MetaStruct::New("InterfaceTag");
  result->SetField(kTags, MetaList::New(MetaType::String));
  return result;
}

std::shared_ptr<InputSpec> IpInterfaceTagGet::GetInputSpecInternal() {
  return InputSpecOf(
      {Required(Shared::InterfaceName, "Name of orvknic whose tags are to be read")});
}

void IpInterfaceTagGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  std::string const& interfaceName = input->GetParameter(kInterfaceName);
  try {
    auto result = GetOutputStructure();
    auto tags = MetaList::New(MetaType::String);
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    auto nics = nicInfo.GetOrvikNics();
    HostCtl::Network::OrvkNic* found = nullptr;
    for (auto const& nic : nics) {
      if (nic->GetInterfaceName() == interfaceName) {
        found = nic.get();
        break;
      }
    }
    if (!found) {
      output->AddErrorMessage("Unable to find an interface with name " + interfaceName);
      return;
    }
    std::vector<HostCtl::Network::OrvkNicTagType> tagIds;
    found->GetTags(tagIds);
    for (auto tag : tagIds) tags->Add(OrvkCtl::Network::OrvkNicTagIdToName(tag));
    result->SetField(kTags, tags);
    output->SetRootObject(result);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error getting tags on interface " + interfaceName +
                            ". Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
