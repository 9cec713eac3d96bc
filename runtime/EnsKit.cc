#include "runtime/EnsKit.h"

namespace CorvaneCli::NetworkNamespace {

std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewEnsParameter(
    std::string const& name, char const* shortName, Toolbase::CallSpec::ParameterType type,
    char const* description) {
  auto parameter = Toolbase::CallSpec::ParameterSpec::New(name, type);
  parameter->SetRequired(true);
  parameter->SetShortName(shortName);
  parameter->SetDescription(description);
  return parameter;
}

std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewLcoreIdParameter(std::string const& name,
                                                                       char const* description) {
  return NewEnsParameter(name, "l", Toolbase::CallSpec::ParameterType::Int, description);
}

}  // namespace CorvaneCli::NetworkNamespace
