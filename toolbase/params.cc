#include "params.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <algorithm>
#include <map>
#include <string_view>
#include <regex>

#include "bool_word.h"
#include "utf8.h"
#include "toolbase/call_spec.h"

namespace Toolbase::Cli {
namespace {

using CallSpec::ParameterConstraint;
using CallSpec::ParameterSpec;

bool ParseLong(std::string const& text, long& value) {
  if (text.empty()) return false;
  errno = 0;
  char* end = nullptr;
  value = std::strtol(text.c_str(), &end, 10);
  return errno == 0 && end == text.c_str() + text.size() && !std::isspace(text.front());
}

std::string Join(std::vector<std::string> const& items, char const* separator) {
  std::string text;
  for (auto const& item : items) {
    if (!text.empty()) text += separator;
    text += item;
  }
  return text;
}

std::vector<std::string> AllowedValues(ParameterConstraint const& constraint) {
  std::vector<std::string> values;
  switch (constraint.GetType()) {
    case CallSpec::IntRange:
      values.push_back(std::to_string(constraint.GetLow()) + " to " +
                       std::to_string(constraint.GetHigh()));
      break;
    case CallSpec::IntEnum:
      for (long value : constraint.GetIntEnums()) values.push_back(std::to_string(value));
      break;
    case CallSpec::StringEnum:
      for (auto const& [value, description] : constraint.GetStringEnums()) values.push_back(value);
      break;
    case CallSpec::StringRegex:
      values.push_back("text matching " + constraint.GetRegex());
      break;
    default:
      break;
  }
  return values;
}

std::string ReplaceAll(std::string text, std::string const& tag, std::string const& with) {
  for (auto at = text.find(tag); at != std::string::npos; at = text.find(tag, at + with.size())) {
    text.replace(at, tag.size(), with);
  }
  return text;
}

std::string Option(ParameterSpec const& parameter) { return "--" + parameter.GetName(); }

// Edits (insert, delete, replace, swap of neighbours) from `a` to `b`.
std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      std::size_t const cost = a[i - 1] == b[j - 1] ? 0 : 1;
      d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + cost});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
      }
    }
  }
  return d[a.size()][b.size()];
}

}  // namespace

std::string ClosestName(std::string const& typed, std::vector<std::string> const& names) {
  std::string best;
  std::size_t best_distance = 0;
  // One slip in a short word, two in a longer one.
  std::size_t const allowed = typed.size() <= 4 ? 1 : 2;
  for (auto const& name : names) {
    std::size_t distance = EditDistance(typed, name);
    if (distance > allowed && !(typed.size() >= 3 && name.rfind(typed, 0) == 0)) continue;
    if (best.empty() || distance < best_distance) {
      best = name;
      best_distance = distance;
    }
  }
  return best;
}

std::string DidYouMean(std::string const& typed, std::vector<std::string> const& names) {
  auto closest = ClosestName(typed, names);
  return closest.empty() ? "" : " Did you mean " + closest + "?";
}

std::string CheckValue(ParameterSpec const& parameter, std::string const& value) {
  // Everything a command stores or prints is text: bytes that are not UTF-8
  // would only fail later, deep inside the host library.
  if (!Text::IsValidUtf8(value)) return "expects UTF-8 text; the value has bytes that are not";
  long number = 0;
  switch (parameter.GetType()) {
    case CallSpec::Int:
      if (!ParseLong(value, number)) return "expects an integer, got '" + value + "'";
      break;
    case CallSpec::Bool:
      if (!ParseBoolWord(value)) {
        return "expects true or false (also yes/no, 1/0), got '" + value + "'";
      }
      return "";
    case CallSpec::Flag:
      return "";
    default:
      break;
  }
  auto const& constraint = parameter.GetConstraint();
  if (!constraint) return "";
  bool allowed = true;
  switch (constraint->GetType()) {
    case CallSpec::IntRange:
      if (parameter.GetType() != CallSpec::Int && !ParseLong(value, number)) {
        return "expects an integer, got '" + value + "'";
      }
      allowed = number >= constraint->GetLow() && number <= constraint->GetHigh();
      break;
    case CallSpec::IntEnum:
      if (parameter.GetType() != CallSpec::Int && !ParseLong(value, number)) {
        return "expects an integer, got '" + value + "'";
      }
      allowed = false;
      for (long candidate : constraint->GetIntEnums()) allowed = allowed || candidate == number;
      break;
    case CallSpec::StringEnum:
      allowed = false;
      for (auto const& entry : constraint->GetStringEnums()) {
        allowed = allowed || entry.first == value;
      }
      break;
    case CallSpec::StringRegex:
      allowed = std::regex_match(value, std::regex(constraint->GetRegex()));
      break;
    default:
      break;
  }
  if (allowed) return "";
  if (constraint->GetType() == CallSpec::IntRange) {
    return "value " + value + " is out of range: allowed " + AllowedValues(*constraint).front();
  }
  if (constraint->GetType() == CallSpec::StringRegex) {
    // What the pattern stands for, in the parameter's own words (not when
    // they only point at the value list, which for a pattern is the pattern).
    std::string expected = parameter.GetDescription();
    while (!expected.empty() && std::isspace(static_cast<unsigned char>(expected.back()))) {
      expected.pop_back();
    }
    if (expected.empty() || expected.find("%ENUM%") != std::string::npos ||
        expected.find("%FULLENUM%") != std::string::npos) {
      return "value '" + value + "' does not have the expected form";
    }
    return "value '" + value + "' does not have the expected form: " + expected;
  }
  return "value '" + value + "' is not allowed: allowed values are " +
         Join(AllowedValues(*constraint), ", ");
}

char const* ValueWord(ParameterSpec const& parameter) {
  switch (parameter.GetType()) {
    case CallSpec::Int:
      return "long";
    case CallSpec::Bool:
      return "bool";
    case CallSpec::Flag:
      return nullptr;
    default:
      return "str";
  }
}

std::string ExpandDescription(ParameterSpec const& parameter) {
  std::string text = parameter.GetDescription();
  auto const& constraint = parameter.GetConstraint();
  if (!constraint) return text;
  if (text.find("%FULLENUM%") != std::string::npos) {
    std::string full;
    if (constraint->GetType() == CallSpec::StringEnum) {
      for (auto const& [value, description] : constraint->GetStringEnums()) {
        full += "\n" + value + (description.empty() ? "" : ": " + description);
      }
    } else {
      full = Join(AllowedValues(*constraint), ", ");
    }
    text = ReplaceAll(text, "%FULLENUM%", full);
  }
  return ReplaceAll(text, "%ENUM%", Join(AllowedValues(*constraint), ", "));
}

std::shared_ptr<CallSpec::Input> ParseParameters(CallSpec::InputSpec const& spec,
                                                 std::vector<std::string> const& args) {
  auto input = CallSpec::Input::New();
  std::map<std::string, int> seen;
  for (size_t i = 0; i < args.size(); ++i) {
    std::string const& arg = args[i];
    if (arg.size() < 2 || arg[0] != '-' || arg == "--") {
      throw UsageError("Unexpected argument '" + arg + "'");
    }
    bool is_long = arg[1] == '-';
    std::string name = arg.substr(is_long ? 2 : 1);
    std::string value;
    bool has_inline_value = false;
    if (auto eq = name.find('='); eq != std::string::npos) {
      value = name.substr(eq + 1);
      name.resize(eq);
      has_inline_value = true;
    }
    std::shared_ptr<ParameterSpec> parameter;
    if (is_long) {
      parameter = spec.FindParameter(name);
    } else {
      for (auto const& candidate : spec.GetParameters()) {
        if (candidate->GetShortName() == name) parameter = candidate;
      }
    }
    if (!parameter) {
      std::vector<std::string> names;
      for (auto const& candidate : spec.GetParameters()) names.push_back(Option(*candidate));
      std::string const typed = std::string(is_long ? "--" : "-") + name;
      throw UsageError("Unknown parameter " + typed +
                       (names.empty() ? ": this command takes no parameters"
                                      : "." + DidYouMean(is_long ? typed : "--" + name, names) +
                                            " Valid parameters: " + Join(names, ", ")));
    }
    std::string const option = Option(*parameter);
    if (parameter->GetType() == CallSpec::Flag) {
      if (has_inline_value) throw UsageError("Parameter " + option + " takes no value");
    } else if (!has_inline_value) {
      if (i + 1 >= args.size()) throw UsageError("Parameter " + option + " needs a value");
      value = args[++i];
    }
    if (++seen[parameter->GetName()] > 1 && parameter->GetType() != CallSpec::StringList) {
      throw UsageError("Parameter " + option + " is given more than once");
    }
    if (auto problem = CheckValue(*parameter, value); !problem.empty()) {
      throw UsageError("Parameter " + option + " " + problem);
    }
    input->AddValue(parameter->GetName(), value);
  }
  for (auto const& parameter : spec.GetParameters()) {
    if (parameter->IsRequired() && !input->HasParameter(parameter->GetName())) {
      throw UsageError("Missing required parameter " + Option(*parameter));
    }
  }
  return input;
}

}  // namespace Toolbase::Cli
