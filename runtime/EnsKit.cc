#include "runtime/EnsKit.h"

#include "frame/CommandKit.h"

namespace CorvaneCli::NetworkNamespace {

std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewEnsParameter(
    std::string const& name, char const* shortName, Toolbase::CallSpec::ParameterType type,
    char const* description) {
  return Required(name, type, shortName, description);
}

std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewLcoreIdParameter(std::string const& name,
                                                                       char const* description) {
  return NewEnsParameter(name, "l", Toolbase::CallSpec::ParameterType::Int, description);
}

}  // namespace CorvaneCli::NetworkNamespace
