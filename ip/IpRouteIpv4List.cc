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

NETWORK_COMMAND_NEW(IpRouteIpv4List, Rows)

IpRouteIpv4List::IpRouteIpv4List() {
  SetDescription("List configured IPv4 routes");
  SetDefaultOutputFormatter("table");
  SetDefaultOutputParameter(RouteFieldsDirective(RouteFamily::Ipv4),
                            RouteFields(RouteFamily::Ipv4));
}

std::shared_ptr<MetaStruct> IpRouteIpv4List::GetOutputStructure() {
  return RouteStructure(RouteFamily::Ipv4);
}

std::shared_ptr<InputSpec> IpRouteIpv4List::GetInputSpecInternal() {
  return InputSpecOf({NewNetstackParameter(NetstackScope::UseDefault)});
}

void IpRouteIpv4List::ExecuteInternal(std::shared_ptr<Input> const& input,
                                      std::shared_ptr<Output> const& output) {
  try {
    output->SetRootObject(
        ListRoutes(*input, RouteFamily::Ipv4, [this] { return GetOutputStructure(); }));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
