#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "format_internal.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format::Internal {

using MetaObj::Kind;
using MetaObj::MetaList;
using MetaObj::MetaObject;
using MetaObj::MetaStruct;

namespace {

// One cell: quoted when it holds a comma, a quote or a line break, inner
// quotes doubled.
std::string Quote(std::string const& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

// Unquoted text of a value in a cell: list items joined by ",", structure
// fields as "Name=value" joined by ";"; below the top, lists in brackets and
// structures in braces.
std::string CellText(MetaObject const* value, bool nested) {
  if (!value || (value->GetKind() != Kind::List && value->GetKind() != Kind::Struct)) {
    return ScalarText(value);
  }
  std::string text;
  if (value->GetKind() == Kind::List) {
    for (auto const& item : static_cast<MetaList const&>(*value).GetItems()) {
      if (!text.empty()) text += ',';
      text += CellText(item.get(), true);
    }
    return nested ? "[" + text + "]" : text;
  }
  bool first = true;
  for (auto const& [name, field] : static_cast<MetaStruct const&>(*value).GetFields()) {
    if (!first) text += ';';
    first = false;
    text += name + "=" + CellText(field.get(), true);
  }
  return nested ? "{" + text + "}" : text;
}

void WriteRow(std::vector<std::string> const& cells, std::ostream& out) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) out << ',';
    out << Quote(cells[i]);
  }
  out << '\n';
}

// A header line of all field names (the first shape's order, then names that
// only later records have) and one line per record.
void WriteRecords(std::vector<MetaStruct const*> const& shapes,
                  std::vector<MetaStruct const*> const& records, std::ostream& out) {
  std::vector<std::string> columns;
  for (auto const* shape : shapes) {
    for (auto const& field : shape->GetFields()) {
      if (std::find(columns.begin(), columns.end(), field.first) == columns.end()) {
        columns.push_back(field.first);
      }
    }
  }
  if (columns.empty()) return;
  WriteRow(columns, out);
  for (auto const* record : records) {
    std::vector<std::string> cells;
    for (auto const& column : columns)
      cells.push_back(CellText(record->GetField(column).get(), false));
    WriteRow(cells, out);
  }
}

}  // namespace

void PrintCsv(MetaObject const& root, std::ostream& out) {
  if (root.GetKind() == Kind::Struct) {
    auto const* record = static_cast<MetaStruct const*>(&root);
    return WriteRecords({record}, {record}, out);
  }
  if (root.GetKind() != Kind::List) return WriteRow({ScalarText(&root)}, out);
  auto const& list = static_cast<MetaList const&>(root);
  if (!IsStructList(list)) {
    for (auto const& item : list.GetItems()) WriteRow({ScalarText(item.get())}, out);
    return;
  }
  std::vector<MetaStruct const*> records;
  for (auto const& item : list.GetItems()) {
    if (item && item->GetKind() == Kind::Struct) {
      records.push_back(static_cast<MetaStruct const*>(item.get()));
    }
  }
  std::vector<MetaStruct const*> shapes = records;
  if (list.GetPrototype()) shapes.insert(shapes.begin(), list.GetPrototype().get());
  WriteRecords(shapes, records, out);
}

}  // namespace Toolbase::Format::Internal
