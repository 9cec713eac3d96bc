#include "toolbase/call_spec.h"

#include <stdexcept>

#include "bool_word.h"

namespace Toolbase::CallSpec {

std::shared_ptr<ParameterConstraint> ParameterConstraint::New(ParameterConstraintType type) {
  return std::shared_ptr<ParameterConstraint>(new ParameterConstraint(type));
}
void ParameterConstraint::SetIntRange(long low, long high) {
  low_ = low;
  high_ = high;
}
void ParameterConstraint::AddIntEnum(long value) { int_enums_.push_back(value); }
void ParameterConstraint::AddStringEnum(char const* value) { string_enums_.emplace_back(value, ""); }
void ParameterConstraint::AddStringEnum(char const* value, char const* description) {
  string_enums_.emplace_back(value, description);
}
void ParameterConstraint::AddStringEnum(std::string value, std::string description) {
  string_enums_.emplace_back(std::move(value), std::move(description));
}
void ParameterConstraint::SetStringRegex(std::string const& pattern) { regex_ = pattern; }

std::shared_ptr<ParameterSpec> ParameterSpec::New(char const* name, ParameterType type) {
  return std::shared_ptr<ParameterSpec>(new ParameterSpec(name, type));
}
std::shared_ptr<ParameterSpec> ParameterSpec::New(std::string const& name, ParameterType type) {
  return std::shared_ptr<ParameterSpec>(new ParameterSpec(name, type));
}

void ParameterSpec::SetShortName(char const* short_name) { short_name_ = short_name; }
void ParameterSpec::SetDescription(char const* description) { description_ = description; }
void ParameterSpec::SetDescription(std::string description) {
  description_ = std::move(description);
}

std::shared_ptr<InputSpec> InputSpec::New() { return std::shared_ptr<InputSpec>(new InputSpec()); }
void InputSpec::AddParameter(std::shared_ptr<ParameterSpec> const& parameter) {
  parameters_.push_back(parameter);
}
std::shared_ptr<ParameterSpec> InputSpec::FindParameter(std::string const& name) const {
  for (auto const& parameter : parameters_) {
    if (parameter->GetName() == name) return parameter;
  }
  return nullptr;
}

std::shared_ptr<OutputSpec> OutputSpec::New() {
  return std::shared_ptr<OutputSpec>(new OutputSpec());
}

std::shared_ptr<Input> Input::New() { return std::shared_ptr<Input>(new Input()); }

bool Input::HasParameter(std::string const& name) const { return values_.count(name) != 0; }

std::string const& Input::GetParameter(std::string const& name) const {
  auto it = values_.find(name);
  if (it == values_.end() || it->second.empty()) {
    throw std::out_of_range("parameter --" + name + " was not given");
  }
  return it->second.back();
}

long Input::GetParameterInt(std::string const& name) const {
  return std::stol(GetParameter(name));
}

bool Input::GetParameterBool(std::string const& name) const {
  auto value = ParseBoolWord(GetParameter(name));
  if (!value) throw std::invalid_argument("parameter --" + name + " is not a truth value");
  return *value;
}

void Input::GetParameterList(std::string const& name, std::vector<std::string>& values) const {
  auto it = values_.find(name);
  if (it != values_.end()) values.insert(values.end(), it->second.begin(), it->second.end());
}

bool Input::IsFlagSet(std::string const& name) const { return HasParameter(name); }

void Input::AddValue(std::string const& name, std::string value) {
  values_[name].push_back(std::move(value));
}

std::shared_ptr<Output> Output::New() { return std::shared_ptr<Output>(new Output()); }

}  // namespace Toolbase::CallSpec
