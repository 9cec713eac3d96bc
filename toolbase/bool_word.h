// Spelling of truth values on the command line.
#pragma once

#include <optional>
#include <string>

namespace Toolbase {

// true/false, yes/no, 1/0, in any case; nullopt for anything else.
std::optional<bool> ParseBoolWord(std::string const& word);

}  // namespace Toolbase
