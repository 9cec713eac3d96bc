#include <string>

#include "format_internal.h"
#include "utf8.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format::Internal {

using MetaObj::Kind;
using MetaObj::MetaList;
using MetaObj::MetaObject;
using MetaObj::MetaStruct;

namespace {

MetaStruct::Field const* FindField(MetaStruct const& record, std::string const& name) {
  for (auto const& field : record.GetFields()) {
    if (field.first == name) return &field;
  }
  return nullptr;
}

bool IsScalar(MetaObject const* value) {
  return value && value->GetKind() != Kind::Struct && value->GetKind() != Kind::List;
}

// The named fields that `record` has, in the order named; all its fields when
// `names` is empty.
std::vector<MetaStruct::Field> Select(MetaStruct const& record,
                                      std::vector<std::string> const& names) {
  if (names.empty()) return record.GetFields();
  std::vector<MetaStruct::Field> shown;
  for (auto const& name : names) {
    if (auto const* field = FindField(record, name)) shown.push_back(*field);
  }
  return shown;
}

std::string Join(std::vector<std::string> const& parts, char const* separator) {
  std::string joined;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) joined += separator;
    joined += parts[i];
  }
  return joined;
}

}  // namespace

std::string ScalarText(MetaObject const* value) {
  if (!value || !value->HasValue()) return "";
  switch (value->GetKind()) {
    case Kind::Bool:
      return static_cast<MetaObj::MetaBool const*>(value)->GetValue() ? "true" : "false";
    case Kind::Int:
      return std::to_string(static_cast<MetaObj::MetaInt const*>(value)->GetValue());
    case Kind::String:
      return static_cast<MetaObj::MetaString const*>(value)->GetValue();
    case Kind::Struct:
    case Kind::List:
      break;
  }
  return "";
}

bool IsStructList(MetaList const& list) {
  if (list.GetElementType() == MetaObj::Struct || list.GetPrototype()) return true;
  auto const& items = list.GetItems();
  return !items.empty() && items.front() && items.front()->GetKind() == Kind::Struct;
}

std::string ElementTypeName(MetaList const& list) {
  if (list.GetPrototype()) return list.GetPrototype()->GetTypeName();
  for (auto const& item : list.GetItems()) {
    if (item && item->GetKind() == Kind::Struct) {
      return static_cast<MetaStruct const&>(*item).GetTypeName();
    }
  }
  return "";
}

std::vector<std::string> SplitNames(std::string const& value) {
  std::vector<std::string> names;
  if (value.empty()) return names;
  std::size_t start = 0;
  while (true) {
    auto const comma = value.find(',', start);
    names.push_back(value.substr(start, comma - start));
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return names;
}

std::size_t DisplayWidth(std::string_view text) { return Text::DisplayWidth(text); }

std::string const* Style::Find(std::string const& key) const {
  auto const found = directives_.find(key);
  return found == directives_.end() ? nullptr : &found->second;
}

std::vector<MetaStruct::Field> Style::ShownFields(MetaStruct const& record) const {
  auto const* fields = Find("fields:" + record.GetTypeName());
  return Select(record, fields ? SplitNames(*fields) : std::vector<std::string>{});
}

std::string const* Style::Header(MetaStruct const& record) const {
  return Find("header:" + record.GetTypeName());
}

std::string Style::ExpandHeader(std::string const& header, MetaStruct const& record) const {
  std::string text;
  std::size_t pos = 0;
  while (pos < header.size()) {
    auto const open = header.find('%', pos);
    auto const close = open == std::string::npos ? open : header.find('%', open + 1);
    if (close == std::string::npos) {
      text += header.substr(pos);
      break;
    }
    text += header.substr(pos, open - pos);
    if (auto const* field = FindField(record, header.substr(open + 1, close - open - 1))) {
      text += InlineText(field->second.get());
    }
    pos = close + 1;
  }
  return text;
}

std::string Style::FieldText(MetaStruct const& record, std::string const& name,
                             MetaObject const* value) const {
  std::string text = InlineText(value);
  if (text.empty() || !IsScalar(value)) return text;
  if (auto const* unit = Find("units:" + record.GetTypeName() + "." + name)) {
    text += " " + *unit;
  }
  return text;
}

std::string Style::InlineText(MetaObject const* value, bool nested) const {
  if (!value || IsScalar(value)) return ScalarText(value);
  std::vector<std::string> parts;
  if (value->GetKind() == Kind::List) {
    for (auto const& item : static_cast<MetaList const&>(*value).GetItems()) {
      parts.push_back(InlineText(item.get(), true));
    }
    auto const joined = Join(parts, ", ");
    return nested ? "[" + joined + "]" : joined;
  }
  auto const& record = static_cast<MetaStruct const&>(*value);
  for (auto const& [name, field] : Select(record, ColumnDirective(record.GetTypeName(), false))) {
    auto const* item = field.get();
    auto const text =
        !item || IsScalar(item) ? FieldText(record, name, item) : InlineText(item, true);
    parts.push_back(name + ": " + text);
  }
  auto const joined = Join(parts, ", ");
  return nested ? "{" + joined + "}" : joined;
}

std::vector<std::string> Style::ColumnDirective(std::string const& type_name, bool root) const {
  std::vector<std::string> const keys = {root ? "table-columns" : "", "table-columns:" + type_name,
                                         "fields:" + type_name};
  for (auto const& key : keys) {
    if (key.empty()) continue;
    if (auto const* value = Find(key)) {
      auto names = SplitNames(*value);
      if (!names.empty()) return names;
    }
  }
  return {};
}

bool Style::WrapLast() const {
  auto const* wrap = Find("wrap-last");
  return wrap && *wrap == "true";
}

}  // namespace Toolbase::Format::Internal
