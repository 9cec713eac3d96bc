#include <string>

#include "hostctl/orvk_nic.h"
#include "ip/InterfaceTagKit.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(IpInterfaceTagRemove, Bool)

IpInterfaceTagRemove::IpInterfaceTagRemove() {
  SetDescription("Removes a tag on a given Orvik network interface.");
}

std::shared_ptr<InputSpec> IpInterfaceTagRemove::GetInputSpecInternal() {
  return InputSpecOf(
      {NewTagInterfaceParameter(
           "The name of the Orvik network interface from which tags should be removed. This name "
           "must be an interface listed  in the interface list command."),
       NewTagNameParameter()});
}

void IpInterfaceTagRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                           std::shared_ptr<Output> const& output) {
  std::string const& interfaceName = input->GetParameter(kTagInterfaceName);
  std::string const& tagName = input->GetParameter(kTagName);
  try {
    auto tag = OrvkCtl::Network::OrvkNicTagNameToId(tagName);
    if (tag == HostCtl::Network::NoTag) {
      ReportBadTagName(*output, tagName);
      return;
    }
    OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
    auto nic = nicInfo.GetOrvikNicByInterface(interfaceName, false);
    if (!nic) {
      output->AddErrorMessage("Unable to find orvknic with name " + interfaceName);
      return;
    }
    nic->RemoveTag(tag);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error removing tag " + tagName + " from interface " + interfaceName +
                            ". Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
