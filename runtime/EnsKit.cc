#include "runtime/EnsKit.h"

#include "frame/CommandKit.h"

namespace CorvaneCli::NetworkNamespace {

std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewEnsParameter(
    std::string const& name, char const* shortName, Toolbase::CallSpec::ParameterType type,
    char const* description) {
  return Required(name, type, shortName, description);
}

namespace {
const std::string kLcoreId = "lcore-id";
}  // namespace

std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewLcoreIdParameter(char const* description) {
  return NewEnsParameter(kLcoreId, "l", Toolbase::CallSpec::ParameterType::Int, description);
}

unsigned long LcoreIdOf(Toolbase::CallSpec::Input const& input) {
  return input.GetParameterInt(kLcoreId);
}

}  // namespace CorvaneCli::NetworkNamespace
