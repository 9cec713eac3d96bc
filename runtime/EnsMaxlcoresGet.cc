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

NETWORK_COMMAND_NEW(EnsMaxlcoresGet, Int)

EnsMaxlcoresGet::EnsMaxlcoresGet() {
  SetDescription("Get the maximum number of ENS contexts (lcores).");
  SetDefaultOutputFormatter("simple");
}

std::shared_ptr<InputSpec> EnsMaxlcoresGet::GetInputSpecInternal() { return InputSpec::New(); }

void EnsMaxlcoresGet::ExecuteInternal(std::shared_ptr<Input> const&,
                                      std::shared_ptr<Output> const& output) {
  try {
    output->SetRootObject(
        MetaInt::New(static_cast<long>(HostCtl::Network::NetworkInfo::GetMaxLcores())));
  } catch (HostCtl::Lib::HostCtlException const& e) {
    output->AddErrorMessage(e.message);
  }
}

}  // namespace CorvaneCli::NetworkNamespace
