#include "ip/IpDNSSearchRemove.h"

#include "ip/DnsKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

std::shared_ptr<IpDNSSearchRemove> IpDNSSearchRemove::New() {
  return std::shared_ptr<IpDNSSearchRemove>(new IpDNSSearchRemove());
}

IpDNSSearchRemove::IpDNSSearchRemove() {
  SetDescription(
      "Remove a search domain from the list of domains to be searched when trying to resolve an "
      "host name on the Haldeni host.");
}

IpDNSSearchRemove::~IpDNSSearchRemove() = default;

std::shared_ptr<InputSpec> IpDNSSearchRemove::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  AddSearchDomainParameters(*spec, "The string name of a domain to remove from the list of search domains.");
  return spec;
}

std::shared_ptr<OutputSpec> IpDNSSearchRemove::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void IpDNSSearchRemove::ExecuteInternal(std::shared_ptr<Input> const& input,
                                    std::shared_ptr<Output> const& output) {
  ChangeSearchDomain(*input, *output, SearchDomainChange::Remove);
}

}  // namespace CorvaneCli::NetworkNamespace
