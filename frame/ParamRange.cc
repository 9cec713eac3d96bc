#include "frame/ParamRange.h"

#include "toolbase/call_spec.h"

namespace CorvaneCli::NetworkNamespace {

bool CheckParamRange(Toolbase::CallSpec::Output& output, std::string const& name, long value,
                     int64_t min, int64_t max) {
  if (value >= min && value <= max) return true;
  output.AddErrorMessage("Invalid value " + std::to_string(value) + " for parameter '" + name +
                         "': it must be between " + std::to_string(min) + " and " +
                         std::to_string(max) + ".");
  return false;
}

bool TakeParamUint32(Toolbase::CallSpec::Input const& input, Toolbase::CallSpec::Output& output,
                     std::string const& name, uint32_t& field) {
  if (!input.HasParameter(name)) return true;
  long const value = input.GetParameterInt(name);
  if (!CheckParamUint32(output, name, value)) return false;
  field = static_cast<uint32_t>(value);
  return true;
}

}  // namespace CorvaneCli::NetworkNamespace
