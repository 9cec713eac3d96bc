#include "toolbase/meta_obj.h"

namespace Toolbase::MetaObj {

MetaObject::~MetaObject() = default;

std::shared_ptr<MetaBool> MetaBool::New() { return std::make_shared<MetaBool>(); }
std::shared_ptr<MetaBool> MetaBool::New(bool value) {
  auto object = New();
  object->SetValue(value);
  return object;
}

std::shared_ptr<MetaInt> MetaInt::New() { return std::make_shared<MetaInt>(); }
std::shared_ptr<MetaInt> MetaInt::New(long value) {
  auto object = New();
  object->SetValue(value);
  return object;
}

std::shared_ptr<MetaString> MetaString::New() { return std::make_shared<MetaString>(); }
std::shared_ptr<MetaString> MetaString::New(char const* value) {
  return New(std::string(value ? value : ""));
}
std::shared_ptr<MetaString> MetaString::New(std::string const& value) {
  auto object = New();
  object->SetValue(value);
  return object;
}
std::shared_ptr<MetaString> MetaString::New(std::string&& value) {
  auto object = New();
  object->SetValue(std::move(value));
  return object;
}

std::shared_ptr<MetaStruct> MetaStruct::New(char const* type_name) {
  return std::shared_ptr<MetaStruct>(new MetaStruct(type_name ? type_name : ""));
}
std::shared_ptr<MetaStruct> MetaStruct::New(std::string const& type_name) {
  return std::shared_ptr<MetaStruct>(new MetaStruct(type_name));
}

std::shared_ptr<MetaObject> MetaStruct::GetField(std::string const& key) const {
  for (auto const& [name, value] : fields_) {
    if (name == key) return value;
  }
  return nullptr;
}

void MetaStruct::SetField(std::string const& key, std::shared_ptr<MetaObject> const& value) {
  for (auto& field : fields_) {
    if (field.first == key) {
      field.second = value;
      return;
    }
  }
  fields_.emplace_back(key, value);
}
void MetaStruct::SetField(std::string const& key, bool value) {
  SetField(key, std::shared_ptr<MetaObject>(MetaBool::New(value)));
}
void MetaStruct::SetField(std::string const& key, int value) {
  SetField(key, std::shared_ptr<MetaObject>(MetaInt::New(value)));
}
void MetaStruct::SetField(std::string const& key, long value) {
  SetField(key, std::shared_ptr<MetaObject>(MetaInt::New(value)));
}
void MetaStruct::SetField(std::string const& key, unsigned int value) {
  SetField(key, std::shared_ptr<MetaObject>(MetaInt::New(static_cast<long>(value))));
}
void MetaStruct::SetField(std::string const& key, unsigned long value) {
  SetField(key, std::shared_ptr<MetaObject>(MetaInt::New(static_cast<long>(value))));
}
void MetaStruct::SetField(std::string const& key, char const* value) {
  SetField(key, std::shared_ptr<MetaObject>(MetaString::New(value)));
}
void MetaStruct::SetField(std::string const& key, std::string const& value) {
  SetField(key, std::shared_ptr<MetaObject>(MetaString::New(value)));
}
void MetaStruct::SetField(std::string const& key, std::string&& value) {
  SetField(key, std::shared_ptr<MetaObject>(MetaString::New(std::move(value))));
}
void MetaStruct::SetField(std::string const& key, std::vector<std::string> const& value) {
  auto list = MetaList::New(MetaType::String);
  list->AddAll(std::vector<std::string>(value));
  SetField(key, std::shared_ptr<MetaObject>(list));
}

std::shared_ptr<MetaList> MetaList::New(MetaType element_type) {
  return std::shared_ptr<MetaList>(new MetaList(element_type, nullptr));
}
std::shared_ptr<MetaList> MetaList::New(MetaType element_type,
                                        std::shared_ptr<MetaStruct> const& prototype) {
  return std::shared_ptr<MetaList>(new MetaList(element_type, prototype));
}
std::shared_ptr<MetaList> MetaList::New(MetaType element_type,
                                        std::shared_ptr<MetaStruct>&& prototype) {
  return std::shared_ptr<MetaList>(new MetaList(element_type, std::move(prototype)));
}

void MetaList::Add(std::shared_ptr<MetaStruct> const& item) { items_.push_back(item); }
void MetaList::Add(std::shared_ptr<MetaString> const& item) { items_.push_back(item); }
void MetaList::Add(char const* item) { items_.push_back(MetaString::New(item)); }
void MetaList::Add(std::string const& item) { items_.push_back(MetaString::New(item)); }
void MetaList::Add(std::string&& item) { items_.push_back(MetaString::New(std::move(item))); }
void MetaList::AddAll(std::vector<std::string>&& items) {
  items_.reserve(items_.size() + items.size());
  for (auto& item : items) items_.push_back(MetaString::New(std::move(item)));
}

}  // namespace Toolbase::MetaObj
