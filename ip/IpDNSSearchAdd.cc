#include "ip/IpDNSSearchAdd.h"

#include "ip/DnsKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

std::shared_ptr<IpDNSSearchAdd> IpDNSSearchAdd::New() {
  return std::shared_ptr<IpDNSSearchAdd>(new IpDNSSearchAdd());
}

IpDNSSearchAdd::IpDNSSearchAdd() {
  SetDescription(
      "Add a search domain to the list of domains to be searched when trying to resolve an host "
      "name on the Haldeni host.");
}

IpDNSSearchAdd::~IpDNSSearchAdd() = default;

std::shared_ptr<InputSpec> IpDNSSearchAdd::GetInputSpecInternal() {
  auto spec = InputSpec::New();
  AddSearchDomainParameters(*spec, "The string name of a domain to add to the list of search domains.");
  return spec;
}

std::shared_ptr<OutputSpec> IpDNSSearchAdd::GetOutputSpecInternal() {
  auto spec = OutputSpec::New();
  spec->SetRootObject(MetaBool::New());
  return spec;
}

void IpDNSSearchAdd::ExecuteInternal(std::shared_ptr<Input> const& input,
                                    std::shared_ptr<Output> const& output) {
  ChangeSearchDomain(*input, *output, SearchDomainChange::Add);
}

}  // namespace CorvaneCli::NetworkNamespace
