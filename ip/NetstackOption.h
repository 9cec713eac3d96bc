// The `--netstack` option of the IP commands, and the rules by which a command
// picks its netstack instance from it. Two kinds of command use it:
//  - "use the default": an absent or empty option means the default instance
//    "defaultTcpipStack"; a given key is taken as it stands and judged by the
//    host control library.
//  - "consider all": an absent or empty option means all instances; a given
//    key narrows the command to that instance.
#pragma once

#include <memory>
#include <string>

namespace Toolbase::CallSpec {
class Input;
class ParameterSpec;
}  // namespace Toolbase::CallSpec

namespace CorvaneCli::NetworkNamespace {

// The key of the default netstack instance.
extern const std::string kDefaultNetstackKey;

enum class NetstackScope {
  // Absent or empty: the default instance.
  UseDefault,
  // Absent or empty: all instances.
  ConsiderAll,
};

// The optional `--netstack` parameter (short `N`) with the description of its
// scope. The caller adds it to its InputSpec at its place.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewNetstackParameter(NetstackScope scope);

// True when the user named an instance: the option is present and its text is
// not empty. Reads nothing from the host.
bool IsNetstackGiven(Toolbase::CallSpec::Input const& input);

// The key a "use the default" command works on: the option's text when given,
// otherwise kDefaultNetstackKey.
std::string NetstackOrDefault(Toolbase::CallSpec::Input const& input);

// The key a "consider all" command narrows to; empty means all instances.
std::string NetstackOrAll(Toolbase::CallSpec::Input const& input);

}  // namespace CorvaneCli::NetworkNamespace
