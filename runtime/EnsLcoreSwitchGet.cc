#include <memory>
#include <string>

#include "hostctl/network_info.h"
#include "runtime/EnsKit.h"
#include "runtime/RuntimeCommands.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;
using namespace Toolbase::MetaObj;

NETWORK_COMMAND_NEW(EnsLcoreSwitchGet, String)

EnsLcoreSwitchGet::EnsLcoreSwitchGet() {
  SetDescription("Get the switch associated with given ENS context.");
  SetDefaultOutputFormatter("simple");
}

std::shared_ptr<InputSpec> EnsLcoreSwitchGet::GetInputSpecInternal() {
  return InputSpecOf({NewLcoreIdParameter("ENS context id.")});
}

void EnsLcoreSwitchGet::ExecuteInternal(std::shared_ptr<Input> const& input,
                                        std::shared_ptr<Output> const& output) {
  unsigned long const lcoreId = LcoreIdOf(*input);
  try {
    output->SetRootObject(MetaString::New(HostCtl::Network::NetworkInfo::GetLcoreSwitch(lcoreId)));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
