#include <string>

#include "hostctl/lib.h"
#include "ip/IpCommands.h"
#include "ip/NetstackOption.h"
#include "ip/RouteKit.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(IpRouteIpv6List, Rows)

IpRouteIpv6List::IpRouteIpv6List() {
  SetDescription("List configured IPv6 routes");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(RouteFieldsDirective(RouteFamily::Ipv6),
                            RouteFields(RouteFamily::Ipv6));
}

std::shared_ptr<MetaStruct> IpRouteIpv6List::GetOutputStructure() {
  return RouteStructure(RouteFamily::Ipv6);
}

std::shared_ptr<InputSpec> IpRouteIpv6List::GetInputSpecInternal() {
  return InputSpecOf({NewNetstackParameter(NetstackScope::UseDefault)});
}

void IpRouteIpv6List::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    output->SetRootObject(
        ListRoutes(*input, RouteFamily::Ipv6, [this] { return GetOutputStructure(); }));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
