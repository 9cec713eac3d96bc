#include "ip/NetstackOption.h"

#include "frame/CommandKit.h"
#include "toolbase/call_spec.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;

const std::string kDefaultNetstackKey = "defaultTcpipStack";

namespace {
const std::string kUseDefaultDescription =
    "The network stack instance; if unspecified, use the default netstack instance";
const std::string kConsiderAllDescription =
    "The network stack instance; if unspecified, consider all netstack instances";
}  // namespace

std::shared_ptr<ParameterSpec> NewNetstackParameter(NetstackScope scope) {
  auto netstack =
      Optional(Shared::Netstack, scope == NetstackScope::UseDefault ? kUseDefaultDescription
                                                                    : kConsiderAllDescription);
  return netstack;
}

bool IsNetstackGiven(Input const& input) {
  return input.HasParameter(kNetstack) && !input.GetParameter(kNetstack).empty();
}

std::string NetstackOrDefault(Input const& input) {
  return IsNetstackGiven(input) ? input.GetParameter(kNetstack) : kDefaultNetstackKey;
}

std::string NetstackOrAll(Input const& input) {
  return IsNetstackGiven(input) ? input.GetParameter(kNetstack) : std::string();
}

}  // namespace CorvaneCli::NetworkNamespace
