// Declarations a command makes about its call (parameters, output shape) and
// the objects it receives when it runs (parsed input, output to fill).
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Toolbase::MetaObj {
class MetaObject;
}

namespace Toolbase::CallSpec {

enum ParameterType { String = 0, Int = 1, Bool = 2, Flag = 3, StringList = 4 };

enum ParameterConstraintType { NoConstraint = 0, IntRange = 1, IntEnum = 2, StringEnum = 3,
                               StringRegex = 4 };

// What values a parameter accepts. Filled according to its type:
// IntRange by SetIntRange, IntEnum by AddIntEnum, StringEnum by AddStringEnum,
// StringRegex by SetStringRegex (the whole value must match).
class ParameterConstraint {
 public:
  static std::shared_ptr<ParameterConstraint> New(ParameterConstraintType type);

  void SetIntRange(long low, long high);
  void AddIntEnum(long value);
  void AddStringEnum(char const* value);
  void AddStringEnum(char const* value, char const* description);
  void AddStringEnum(std::string value, std::string description);
  void SetStringRegex(std::string const& pattern);

  ParameterConstraintType GetType() const { return type_; }
  long GetLow() const { return low_; }
  long GetHigh() const { return high_; }
  std::vector<long> const& GetIntEnums() const { return int_enums_; }
  // Pairs of value and description (empty when the value has none).
  std::vector<std::pair<std::string, std::string>> const& GetStringEnums() const {
    return string_enums_;
  }
  std::string const& GetRegex() const { return regex_; }

 private:
  explicit ParameterConstraint(ParameterConstraintType type) : type_(type) {}
  ParameterConstraintType type_;
  long low_ = 0;
  long high_ = 0;
  std::vector<long> int_enums_;
  std::vector<std::pair<std::string, std::string>> string_enums_;
  std::string regex_;
};

class ParameterSpec {
 public:
  // `name` is the long name without leading dashes.
  static std::shared_ptr<ParameterSpec> New(char const* name, ParameterType type);
  static std::shared_ptr<ParameterSpec> New(std::string const& name, ParameterType type);

  void SetRequired(bool required) { required_ = required; }
  // A secret (a key, a password): no message ever shows its value, and a
  // command with one shows no stray argument either, which may be a secret
  // that lost its option.
  void SetSecret(bool secret) { secret_ = secret; }
  void SetShortName(char const* short_name);
  void SetDescription(char const* description);
  void SetDescription(std::string description);
  void SetConstraint(std::shared_ptr<ParameterConstraint> const& constraint) {
    constraint_ = constraint;
  }

  std::string const& GetName() const { return name_; }
  ParameterType GetType() const { return type_; }
  bool IsRequired() const { return required_; }
  bool IsSecret() const { return secret_; }
  std::string const& GetShortName() const { return short_name_; }
  std::string const& GetDescription() const { return description_; }
  std::shared_ptr<ParameterConstraint> const& GetConstraint() const { return constraint_; }

 private:
  ParameterSpec(std::string name, ParameterType type) : name_(std::move(name)), type_(type) {}
  std::string name_;
  ParameterType type_;
  bool required_ = false;
  bool secret_ = false;
  std::string short_name_;
  std::string description_;
  std::shared_ptr<ParameterConstraint> constraint_;
};

class InputSpec {
 public:
  static std::shared_ptr<InputSpec> New();
  // Appends; the order of calls is the order of the parameters in help.
  void AddParameter(std::shared_ptr<ParameterSpec> const& parameter);
  std::vector<std::shared_ptr<ParameterSpec>> const& GetParameters() const { return parameters_; }
  // The parameter with that long name, or null.
  std::shared_ptr<ParameterSpec> FindParameter(std::string const& name) const;

 private:
  InputSpec() = default;
  std::vector<std::shared_ptr<ParameterSpec>> parameters_;
};

class OutputSpec {
 public:
  static std::shared_ptr<OutputSpec> New();
  // An empty prototype of the command's result: its kind and shape.
  void SetRootObject(std::shared_ptr<MetaObj::MetaObject> const& root) { root_ = root; }
  std::shared_ptr<MetaObj::MetaObject> const& GetRootObject() const { return root_; }

 private:
  OutputSpec() = default;
  std::shared_ptr<MetaObj::MetaObject> root_;
};

// The parsed command line as a command reads it. Values were checked against
// the parameters' types and constraints before the command runs; reading a
// parameter the user did not give throws std::out_of_range.
class Input {
 public:
  static std::shared_ptr<Input> New();

  bool HasParameter(std::string const& name) const;
  std::string const& GetParameter(std::string const& name) const;
  long GetParameterInt(std::string const& name) const;
  bool GetParameterBool(std::string const& name) const;
  void GetParameterList(std::string const& name, std::vector<std::string>& values) const;
  bool IsFlagSet(std::string const& name) const;

  // Framework side: records one value of a parameter (repeated for lists).
  void AddValue(std::string const& name, std::string value);

 private:
  Input() = default;
  std::map<std::string, std::vector<std::string>> values_;
};

// What a command leaves behind: one root object and any number of messages.
class Output {
 public:
  static std::shared_ptr<Output> New();

  void SetRootObject(std::shared_ptr<MetaObj::MetaObject> const& root) { root_ = root; }
  void AddErrorMessage(char const* message) { errors_.emplace_back(message); }
  void AddErrorMessage(std::string const& message) { errors_.push_back(message); }
  void AddErrorMessage(std::string&& message) { errors_.push_back(std::move(message)); }
  bool HasError() const { return !errors_.empty(); }

  std::shared_ptr<MetaObj::MetaObject> const& GetRootObject() const { return root_; }
  std::vector<std::string> const& GetErrorMessages() const { return errors_; }

 private:
  Output() = default;
  std::shared_ptr<MetaObj::MetaObject> root_;
  std::vector<std::string> errors_;
};

}  // namespace Toolbase::CallSpec
