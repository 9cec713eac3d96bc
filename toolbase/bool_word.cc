#include "bool_word.h"

#include <algorithm>
#include <cctype>

namespace Toolbase {

std::optional<bool> ParseBoolWord(std::string const& word) {
  std::string lower(word);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (lower == "true" || lower == "yes" || lower == "1") return true;
  if (lower == "false" || lower == "no" || lower == "0") return false;
  return std::nullopt;
}

}  // namespace Toolbase
