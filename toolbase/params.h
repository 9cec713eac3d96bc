// Parsing and checking of a command's parameters against its InputSpec.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Toolbase::CallSpec {
class Input;
class InputSpec;
class ParameterSpec;
}  // namespace Toolbase::CallSpec

namespace Toolbase::Cli {

// A command line that cannot be used. The text is one line for the user.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Parses `args` (the words after the command's path) as `--long value`,
// `--long=value`, `-s value` or `-s=value`; a Flag takes no value and a
// StringList repeats. Checks types, constraints and required parameters.
// Throws UsageError with a message naming the parameter and what it allows.
std::shared_ptr<CallSpec::Input> ParseParameters(CallSpec::InputSpec const& spec,
                                                 std::vector<std::string> const& args);

// Empty when `value` fits the parameter's type and constraint, else the
// reason, e.g. "expects an integer, got 'x'".
std::string CheckValue(CallSpec::ParameterSpec const& parameter, std::string const& value);

// The one of `names` the user most likely meant by `typed` (a slip of one
// or two letters, or the start of the name), or empty when none is close.
std::string ClosestName(std::string const& typed, std::vector<std::string> const& names);

// " Did you mean X?" for the closest of `names`, or empty.
std::string DidYouMean(std::string const& typed, std::vector<std::string> const& names);

// What the parameter takes, for help and manual pages: "long", "bool" or
// "str"; null for a flag.
char const* ValueWord(CallSpec::ParameterSpec const& parameter);

// The parameter's description with %ENUM% and %FULLENUM% filled in from its
// constraint.
std::string ExpandDescription(CallSpec::ParameterSpec const& parameter);

}  // namespace Toolbase::Cli
