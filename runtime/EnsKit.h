// What the `network ens` commands share: their parameters are all required
// and differ only in name, letter, type and words.
#pragma once

#include <memory>
#include <string>

#include "toolbase/call_spec.h"

namespace CorvaneCli::NetworkNamespace {

// A required parameter of an ENS command.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewEnsParameter(
    std::string const& name, char const* shortName, Toolbase::CallSpec::ParameterType type,
    char const* description);

// The "lcore-id" parameter (short `l`, Int) with its description, and the
// context id it gives.
std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewLcoreIdParameter(char const* description);
unsigned long LcoreIdOf(Toolbase::CallSpec::Input const& input);

}  // namespace CorvaneCli::NetworkNamespace
