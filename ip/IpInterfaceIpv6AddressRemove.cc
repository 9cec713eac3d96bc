#include <string>

#include "hostctl/lib.h"
#include "ip/IpCommands.h"
#include "ip/IpInterfaceCommon.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(IpInterfaceIpv6AddressRemove, Bool)

IpInterfaceIpv6AddressRemove::IpInterfaceIpv6AddressRemove() {
  SetDescription("Remove an IPv6 address from a given Orvik network interface.");
}

std::shared_ptr<InputSpec> IpInterfaceIpv6AddressRemove::GetInputSpecInternal() {
  return Ipv6AddressSpec(
      "The name of the Orvik network interface to remove an IPv6 address from. This name "
      "must be an interface listed in the interface list command.",
      "The IPv6 address to remove from the given Orvik network interface. This must be "
      "in X:X:X::/X format");
}

void IpInterfaceIpv6AddressRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                                   std::shared_ptr<Output> const& output) {
  std::string const& name = input->GetParameter(kInterfaceName);
  try {
    ChangeIpv6Address(*input, *output, name, Ipv6AddressChange::Remove);
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage("Error removing IPv6 address for the interface " + name +
                            ". Error was : " + e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
