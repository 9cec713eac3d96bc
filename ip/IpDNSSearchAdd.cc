#include "ip/DnsKit.h"
#include "ip/IpCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(IpDNSSearchAdd, Bool)

IpDNSSearchAdd::IpDNSSearchAdd() {
  SetDescription(
      "Add a search domain to the list of domains to be searched when trying to resolve an host "
      "name on the Haldeni host.");
}

std::shared_ptr<InputSpec> IpDNSSearchAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  AddSearchDomainParameters(*spec,
                            "The string name of a domain to add to the list of search domains.");
  return spec;
}

void IpDNSSearchAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                     std::shared_ptr<Output> const& output) {
  ChangeSearchDomain(*input, *output, SearchDomainChange::Add);
}

}  // namespace CorvaneCli::NetworkNamespace
