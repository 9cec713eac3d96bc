#include <string>
#include <vector>

#include "hostctl/netstack.h"
#include "hostctl/network_info.h"
#include "hostctl/orvk_nic.h"
#include "ip/InterfaceTagKit.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;
using HostCtl::Network::OrvkNicTagType;

namespace {
const std::string kDefaultNetstack = "defaultTcpipStack";

// The services with a netstack instance of their own, by tag.
struct DedicatedStack {
  OrvkNicTagType tag;
  char const* key;
};
const DedicatedStack kDedicatedStacks[] = {
    {static_cast<OrvkNicTagType>(2), "livehop"},
    {static_cast<OrvkNicTagType>(3), "faultTolerance"},
    {static_cast<OrvkNicTagType>(6), "TamariskProvisioning"},
};
}  // namespace

NETWORK_COMMAND_NEW(IpInterfaceTagAdd, Bool)

IpInterfaceTagAdd::IpInterfaceTagAdd() {
  SetDescription("Adds a tag on a given Orvik network interface. Supported tags are: " +
                 SupportedTagList());
}

std::shared_ptr<InputSpec> IpInterfaceTagAdd::GetInputSpecInternal() {
  return InputSpecOf({NewTagInterfaceParameter(
                          "The name of the Orvik network interface on which tags should be set. "
                          "This name must be an interface listed in the interface list command."),
                      NewTagNameParameter()});
}

void IpInterfaceTagAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  std::string const& interfaceName = input->GetParameter(kTagInterfaceName);
  std::string const& tagName = input->GetParameter(kTagName);
  OrvkCtl::Network::OrvikNicInfoImpl nicInfo;
  try {
    std::string expectedKey = kDefaultNetstack;
    OrvkNicTagType tag = OrvkCtl::Network::OrvkNicTagNameToId(tagName);
    if (tag == HostCtl::Network::NoTag) {
      ReportBadTagName(*output, tagName);
      return;
    }
    for (auto const& dedicated : kDedicatedStacks) {
      if (dedicated.tag == tag) expectedKey = dedicated.key;
    }
    auto networkInfo = HostCtl::Network::NetworkFactory::GetNetworkInfo();
    if (expectedKey != kDefaultNetstack && networkInfo->GetNetstackInstanceState(expectedKey) ==
                                               HostCtl::Network::NetstackInstance::STATE_UP) {
      std::vector<std::string> names;
      nicInfo.GetOrvikNicNamesByInstanceKey(names, expectedKey);
      if (!names.empty()) {
        output->AddErrorMessage("Failed to add " + tagName +
                                " tag when dedicated stack is instantiated");
        return;
      }
    }
    auto nic = nicInfo.GetOrvikNicByInterface(interfaceName, false);
    if (!nic) {
      output->AddErrorMessage("Unable to find orvknic with name " + interfaceName);
      return;
    }
    // A dedicated instance takes its own service's tag only; the default
    // instance is not limited here.
    std::string key = nic->GetNetstackInstanceKey();
    for (auto const& dedicated : kDedicatedStacks) {
      if (key == dedicated.key && tag != dedicated.tag) {
        output->AddErrorMessage("netstack mismatch for tag" + tagName);
        return;
      }
    }
    nic->AddTag(tag, false);
    output->SetRootObject(MetaBool::New(true));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error setting tag " + tagName + " on interface " + interfaceName +
                            ". Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
