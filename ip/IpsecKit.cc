#include "ip/IpsecKit.h"

#include <sstream>

#include "frame/CommandKit.h"

namespace CorvaneCli::NetworkNamespace {

bool ParseSpi(std::string const& text, bool strict, uint32_t& spi) {
  std::istringstream stream(text);
  unsigned int value = 0;
  stream >> std::hex >> value;
  spi = value;
  if (stream.fail()) return false;
  return !strict || stream.eof();
}

std::shared_ptr<Toolbase::CallSpec::ParameterSpec> NewIpsecParameter(
    std::string const& name, char const* shortName, Toolbase::CallSpec::ParameterType type,
    bool required, char const* description, std::initializer_list<char const*> words) {
  using namespace Toolbase::CallSpec;
  auto parameter = required ? Required(name, type, shortName, description)
                            : Optional(name, type, shortName, description);
  if (words.size() != 0) {
    auto constraint = ParameterConstraint::New(ParameterConstraintType::StringEnum);
    for (char const* word : words) constraint->AddStringEnum(word);
    parameter->SetConstraint(constraint);
  }
  return parameter;
}

std::string ConvertToHrsMinsAndSecs(uint64_t seconds) {
  if (seconds == 0) return "infinite";
  uint64_t hours = seconds / 3600;
  uint64_t minutes = seconds % 3600 / 60;
  uint64_t rest = seconds % 60;
  std::string text;
  if (hours != 0) text += std::to_string(hours) + "h ";
  if (minutes != 0) text += std::to_string(minutes) + "m ";
  if (rest != 0) text += std::to_string(rest) + "s ";
  return text;
}

}  // namespace CorvaneCli::NetworkNamespace
