#include "ip/InterfaceTagKit.h"

#include "frame/CommandKit.h"
#include "hostctl/orvk_nic.h"
#include "toolbase/call_spec.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;

const std::string kTagInterfaceName = "interface-name";
const std::string kTagName = "tagname";

std::string SupportedTagList() {
  std::string list;
  for (int tag = HostCtl::Network::MIN_TAG; tag <= HostCtl::Network::MAX_TAG; ++tag) {
    list +=
        OrvkCtl::Network::OrvkNicTagIdToName(static_cast<HostCtl::Network::OrvkNicTagType>(tag));
    list += ", ";
  }
  list.resize(list.size() - 2);
  return list;
}

void ReportBadTagName(Output& output, std::string const& name) {
  output.AddErrorMessage("Invalid tag name " + name);
  output.AddErrorMessage("Supported tags are: " + SupportedTagList());
}

std::shared_ptr<ParameterSpec> NewTagInterfaceParameter(char const* description) {
  auto name = Required(kTagInterfaceName, ParameterType::String, "i", description);
  return name;
}

std::shared_ptr<ParameterSpec> NewTagNameParameter() {
  auto tag = Required(kTagName, ParameterType::String, "t", "Tag name to assign to the interface");
  return tag;
}

}  // namespace CorvaneCli::NetworkNamespace
