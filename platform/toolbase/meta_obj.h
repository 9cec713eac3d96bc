// Typed output tree of a command: booleans, integers, strings, structures and
// lists. A command fills one tree; the framework's formatters print it.
//
// Every object is made by a static New() and handled through std::shared_ptr.
// A value object can be empty (made by New() without a value): formatters show
// it as an empty value, machine formats as null.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Toolbase::MetaObj {

// Element type of a list. The plug-in uses String and Struct only.
enum MetaType { None = 0, Scalar = 1, String = 2, Struct = 3 };

// The kind of a node of the tree.
enum class Kind { Bool, Int, String, Struct, List };

class MetaObject {
 public:
  virtual ~MetaObject();
  virtual Kind GetKind() const = 0;
  // False for a value made by New() without a value.
  virtual bool HasValue() const = 0;
};

class MetaBool : public MetaObject {
 public:
  static std::shared_ptr<MetaBool> New();
  static std::shared_ptr<MetaBool> New(bool value);
  Kind GetKind() const override { return Kind::Bool; }
  bool HasValue() const override { return has_value_; }
  bool GetValue() const { return value_; }
  void SetValue(bool value) {
    value_ = value;
    has_value_ = true;
  }

 private:
  bool has_value_ = false;
  bool value_ = false;
};

class MetaInt : public MetaObject {
 public:
  static std::shared_ptr<MetaInt> New();
  static std::shared_ptr<MetaInt> New(long value);
  Kind GetKind() const override { return Kind::Int; }
  bool HasValue() const override { return has_value_; }
  long GetValue() const { return value_; }
  void SetValue(long value) {
    value_ = value;
    has_value_ = true;
  }

 private:
  bool has_value_ = false;
  long value_ = 0;
};

class MetaString : public MetaObject {
 public:
  static std::shared_ptr<MetaString> New();
  static std::shared_ptr<MetaString> New(char const* value);
  static std::shared_ptr<MetaString> New(std::string const& value);
  static std::shared_ptr<MetaString> New(std::string&& value);
  Kind GetKind() const override { return Kind::String; }
  bool HasValue() const override { return has_value_; }
  std::string const& GetValue() const { return value_; }
  void SetValue(std::string value) {
    value_ = std::move(value);
    has_value_ = true;
  }

 private:
  bool has_value_ = false;
  std::string value_;
};

class MetaList;

// A record with a type name and named fields in order of first setting.
// Setting an existing field replaces its value and keeps its place.
class MetaStruct : public MetaObject {
 public:
  using Field = std::pair<std::string, std::shared_ptr<MetaObject>>;

  static std::shared_ptr<MetaStruct> New(char const* type_name);
  static std::shared_ptr<MetaStruct> New(std::string const& type_name);
  Kind GetKind() const override { return Kind::Struct; }
  bool HasValue() const override { return true; }

  std::string const& GetTypeName() const { return type_name_; }
  std::vector<Field> const& GetFields() const { return fields_; }
  // The field's value, or null when the structure has no such field.
  std::shared_ptr<MetaObject> GetField(std::string const& key) const;

  void SetField(std::string const& key, bool value);
  void SetField(std::string const& key, int value);
  void SetField(std::string const& key, long value);
  void SetField(std::string const& key, unsigned int value);
  void SetField(std::string const& key, unsigned long value);
  void SetField(std::string const& key, char const* value);
  void SetField(std::string const& key, std::string const& value);
  void SetField(std::string const& key, std::string&& value);
  // A vector becomes a list of strings.
  void SetField(std::string const& key, std::vector<std::string> const& value);
  void SetField(std::string const& key, std::shared_ptr<MetaObject> const& value);

 private:
  explicit MetaStruct(std::string type_name) : type_name_(std::move(type_name)) {}
  std::string type_name_;
  std::vector<Field> fields_;
};

// A list of strings or of structures. A list of structures carries a
// prototype that tells its shape even while it is empty.
class MetaList : public MetaObject {
 public:
  static std::shared_ptr<MetaList> New(MetaType element_type);
  static std::shared_ptr<MetaList> New(MetaType element_type,
                                       std::shared_ptr<MetaStruct> const& prototype);
  static std::shared_ptr<MetaList> New(MetaType element_type,
                                       std::shared_ptr<MetaStruct>&& prototype);
  Kind GetKind() const override { return Kind::List; }
  bool HasValue() const override { return true; }

  void Add(std::shared_ptr<MetaStruct> const& item);
  void Add(std::shared_ptr<MetaString> const& item);
  void Add(char const* item);
  void Add(std::string const& item);
  void Add(std::string&& item);
  void AddAll(std::vector<std::string>&& items);
  unsigned long GetCount() const { return items_.size(); }
  void Reserve(unsigned long count) { items_.reserve(count); }

  MetaType GetElementType() const { return element_type_; }
  // Null for a list of strings.
  std::shared_ptr<MetaStruct> const& GetPrototype() const { return prototype_; }
  std::vector<std::shared_ptr<MetaObject>> const& GetItems() const { return items_; }

 private:
  MetaList(MetaType element_type, std::shared_ptr<MetaStruct> prototype)
      : element_type_(element_type), prototype_(std::move(prototype)) {}
  MetaType element_type_;
  std::shared_ptr<MetaStruct> prototype_;
  std::vector<std::shared_ptr<MetaObject>> items_;
};

}  // namespace Toolbase::MetaObj
