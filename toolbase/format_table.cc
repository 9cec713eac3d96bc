#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "format_internal.h"
#include "utf8.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format::Internal {

using MetaObj::Kind;
using MetaObj::MetaList;
using MetaObj::MetaObject;
using MetaObj::MetaStruct;

namespace {

// A wrapped last column never gets narrower than this.
constexpr std::size_t kMinWrapWidth = 20;
constexpr char const* kGap = "  ";
// Indent of a table below its record's heading, as the simple formatter's.
constexpr int kHeadingStep = 3;

std::vector<MetaStruct const*> Records(MetaList const& list) {
  std::vector<MetaStruct const*> records;
  for (auto const& item : list.GetItems()) {
    if (item && item->GetKind() == Kind::Struct) {
      records.push_back(static_cast<MetaStruct const*>(item.get()));
    }
  }
  return records;
}

// The columns: as the directives name them, less the names that neither the
// prototype nor any row has; without a directive, the prototype's fields
// followed by fields that only rows have.
std::vector<std::string> Columns(MetaList const& list, std::vector<MetaStruct const*> const& rows,
                                 Style const& style, bool root) {
  std::vector<MetaStruct const*> shapes;
  if (list.GetPrototype()) shapes.push_back(list.GetPrototype().get());
  shapes.insert(shapes.end(), rows.begin(), rows.end());
  std::vector<std::string> known;
  for (auto const* shape : shapes) {
    for (auto const& field : shape->GetFields()) {
      if (std::find(known.begin(), known.end(), field.first) == known.end()) {
        known.push_back(field.first);
      }
    }
  }
  auto columns = style.ColumnDirective(ElementTypeName(list), root);
  if (columns.empty()) return known;
  if (shapes.empty()) return columns;
  std::erase_if(columns, [&known](std::string const& name) {
    return std::find(known.begin(), known.end(), name) == known.end();
  });
  return columns;
}

// A cell is one line: line breaks and tabs become blanks.
std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
  return text;
}

// Splits `text` into lines of at most `width` columns at blanks; a word
// longer than a line is cut between characters.
std::vector<std::string> Wrap(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  std::string line;
  auto flush = [&] {
    if (!line.empty()) lines.push_back(std::move(line));
    line.clear();
  };
  std::size_t pos = 0;
  while (pos < text.size()) {
    auto end = text.find(' ', pos);
    if (end == std::string_view::npos) end = text.size();
    auto word = text.substr(pos, end - pos);
    pos = end + 1;
    if (word.empty()) continue;
    while (DisplayWidth(word) > width) {
      flush();
      auto const cut = Text::PrefixForWidth(word, width);
      lines.emplace_back(word.substr(0, cut));
      word.remove_prefix(cut);
    }
    if (word.empty()) continue;
    if (!line.empty() && DisplayWidth(line) + 1 + DisplayWidth(word) > width) flush();
    if (!line.empty()) line += ' ';
    line += word;
  }
  flush();
  if (lines.empty()) lines.emplace_back();
  return lines;
}

void WriteLine(std::vector<std::string> const& cells, std::vector<std::size_t> const& widths,
               int indent, std::ostream& out) {
  std::string line(indent, ' ');
  for (std::size_t i = 0; i < cells.size(); ++i) {
    line += cells[i];
    if (i + 1 == cells.size()) break;
    line.append(widths[i] - DisplayWidth(cells[i]), ' ');
    line += kGap;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out << line << '\n';
}

// One table of `records` under `columns`.
void WriteRows(std::vector<MetaStruct const*> const& records,
               std::vector<std::string> const& columns, Style const& style,
               Options const& options, int indent, std::ostream& out) {
  std::vector<std::vector<std::string>> rows;
  for (auto const* record : records) {
    auto& cells = rows.emplace_back();
    for (auto const& column : columns) {
      cells.push_back(OneLine(style.FieldText(*record, column, record->GetField(column).get())));
    }
  }
  std::vector<std::size_t> widths;
  for (auto const& column : columns) widths.push_back(DisplayWidth(column));
  for (auto const& cells : rows) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      widths[i] = std::max(widths[i], DisplayWidth(cells[i]));
    }
  }

  std::size_t const last = columns.size() - 1;
  std::size_t lead = indent;
  for (std::size_t i = 0; i < last; ++i) lead += widths[i] + 2;
  bool const wrap = style.WrapLast() && options.width > 0;
  if (wrap) {
    auto const room = options.width > 0 && static_cast<std::size_t>(options.width) > lead
                          ? options.width - lead
                          : 0;
    widths[last] =
        std::min(widths[last], std::max({room, kMinWrapWidth, DisplayWidth(columns[last])}));
  }

  WriteLine(columns, widths, indent, out);
  std::vector<std::string> dashes;
  for (auto width : widths) dashes.emplace_back(width, '-');
  WriteLine(dashes, widths, indent, out);
  for (auto& cells : rows) {
    if (!wrap || DisplayWidth(cells[last]) <= widths[last]) {
      WriteLine(cells, widths, indent, out);
      continue;
    }
    auto const lines = Wrap(cells[last], widths[last]);
    cells[last] = lines.front();
    WriteLine(cells, widths, indent, out);
    for (std::size_t i = 1; i < lines.size(); ++i) {
      out << std::string(lead, ' ') << lines[i] << '\n';
    }
  }
}

// True when the heading template names (as %Field%) a field that is not
// one of `columns`.
bool NamesHiddenField(std::string const& header, std::vector<std::string> const& columns) {
  for (auto open = header.find('%'); open != std::string::npos;) {
    auto const close = header.find('%', open + 1);
    if (close == std::string::npos) break;
    auto const name = header.substr(open + 1, close - open - 1);
    if (std::find(columns.begin(), columns.end(), name) == columns.end()) return true;
    open = header.find('%', close + 1);
  }
  return false;
}

}  // namespace

void WriteTable(MetaList const& list, Style const& style, Options const& options, int indent,
                bool root, std::ostream& out) {
  auto const records = Records(list);
  auto const columns = Columns(list, records, style, root);
  if (columns.empty()) return;
  // A heading that names a field the columns leave out (what the record
  // describes: a NIC, a VLAN) would lose that value in one table; such
  // records each get their heading and a table of their own below it.
  auto const* header = list.GetPrototype() ? style.Header(*list.GetPrototype())
                       : records.empty()   ? nullptr
                                           : style.Header(*records.front());
  if (!header || Style::IsNoHeader(*header) || !NamesHiddenField(*header, columns)) {
    return WriteRows(records, columns, style, options, indent, out);
  }
  bool first = true;
  for (auto const* record : records) {
    if (!first) out << '\n';
    first = false;
    out << std::string(indent, ' ') << style.ExpandHeader(*header, *record) << '\n';
    WriteRows({record}, columns, style, options, indent + kHeadingStep, out);
  }
}

void PrintTable(MetaObject const& root, Style const& style, Options const& options,
                std::ostream& out) {
  if (root.GetKind() == Kind::List && IsStructList(static_cast<MetaList const&>(root))) {
    return WriteTable(static_cast<MetaList const&>(root), style, options, 0, true, out);
  }
  PrintSimple(root, style, options, true, out);
}

}  // namespace Toolbase::Format::Internal
