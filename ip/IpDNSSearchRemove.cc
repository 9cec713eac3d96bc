#include "ip/DnsKit.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(IpDNSSearchRemove, Bool)

IpDNSSearchRemove::IpDNSSearchRemove() {
  SetDescription(
      "Remove a search domain from the list of domains to be searched when trying to resolve an "
      "host name on the Haldeni host.");
}

std::shared_ptr<InputSpec> IpDNSSearchRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  AddSearchDomainParameters(
      *spec, "The string name of a domain to remove from the list of search domains.");
  return spec;
}

void IpDNSSearchRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  ChangeSearchDomain(*input, *output, SearchDomainChange::Remove);
}

}  // namespace CorvaneCli::NetworkNamespace
