#include <string>

#include "hostctl/lib.h"
#include "ip/IpCommands.h"
#include "ip/IpInterfaceCommon.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(IpInterfaceIpv6AddressAdd, Bool)

IpInterfaceIpv6AddressAdd::IpInterfaceIpv6AddressAdd() {
  SetDescription("Add a static IPv6 address to a given Orvik network interface.");
}

std::shared_ptr<InputSpec> IpInterfaceIpv6AddressAdd::GetInputSpecInternal() {
  return Ipv6AddressSpec(
      "The name of the Orvik network interface to add a static IPv6 address to. This "
      "name must be an interface listed in the interface list command.",
      "The IPv6 address to add to the given Orvik network interface. This must be in "
      "X:X:X::/X format");
}

void IpInterfaceIpv6AddressAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                std::shared_ptr<Output> const& output) {
  std::string const& name = input->GetParameter(kInterfaceName);
  try {
    ChangeIpv6Address(*input, *output, name, Ipv6AddressChange::Add);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error adding IPv6 address for the interface " + name +
                            ". Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
