#include "ip/NetstackOption.h"

#include "frame/CommandKit.h"
#include "toolbase/call_spec.h"

namespace CorvaneCli::NetworkNamespace {

using namespace Toolbase::CallSpec;

const std::string kDefaultNetstackKey = "defaultTcpipStack";
const std::string kNetstackOption = "netstack";

namespace {
const std::string kUseDefaultDescription =
    "The network stack instance; if unspecified, use the default netstack instance";
const std::string kConsiderAllDescription =
    "The network stack instance; if unspecified, consider all netstack instances";
}  // namespace

std::shared_ptr<ParameterSpec> NewNetstackParameter(NetstackScope scope) {
  auto netstack = Optional(
      kNetstackOption, ParameterType::String, "N",
      scope == NetstackScope::UseDefault ? kUseDefaultDescription : kConsiderAllDescription);
  return netstack;
}

bool IsNetstackGiven(Input const& input) {
  return input.HasParameter(kNetstackOption) && !input.GetParameter(kNetstackOption).empty();
}

std::string NetstackOrDefault(Input const& input) {
  return IsNetstackGiven(input) ? input.GetParameter(kNetstackOption) : kDefaultNetstackKey;
}

std::string NetstackOrAll(Input const& input) {
  return IsNetstackGiven(input) ? input.GetParameter(kNetstackOption) : std::string();
}

}  // namespace CorvaneCli::NetworkNamespace
