// Range checks for integer parameters. The framework hands every Int
// parameter over as a long; many of them go into narrower host fields (32-bit
// counts, 16-bit sizes). A value that does not fit is refused here, by name,
// before anything on the host changes, instead of wrapping silently.
#pragma once

#include <cstdint>
#include <string>

namespace Toolbase::CallSpec {
class Input;
class Output;
}  // namespace Toolbase::CallSpec

namespace CorvaneCli::NetworkNamespace {

// True when `value` lies in [min, max]. Otherwise adds
// "Invalid value V for parameter 'NAME': it must be between MIN and MAX."
// to `output` and returns false. `name` is the parameter's long name.
bool CheckParamRange(Toolbase::CallSpec::Output& output, std::string const& name, long value,
                     int64_t min, int64_t max);

// The usual case: the value goes into an unsigned 32-bit field.
inline bool CheckParamUint32(Toolbase::CallSpec::Output& output, std::string const& name,
                             long value) {
  return CheckParamRange(output, name, value, 0, UINT32_MAX);
}

// An optional parameter for an unsigned 32-bit field: when `name` is given,
// checks it as CheckParamUint32 does and stores it in `field` if it fits.
// False only for a given value that does not fit.
bool TakeParamUint32(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                     std::string const& name, uint32_t& field);

}  // namespace CorvaneCli::NetworkNamespace
