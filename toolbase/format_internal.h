// Pieces shared by the formatters: directive lookup, value texts, and the
// entry of each formatter. Internal to libtoolbase; Format::Print is the one
// public entry.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "format.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format::Internal {

// Text of a bool ("true"/"false"), int or string; empty text for an object
// without a value, for null, and for a structure or list.
std::string ScalarText(MetaObj::MetaObject const* value);

// True for a list whose elements are structures (by element type, prototype
// or first element).
bool IsStructList(MetaObj::MetaList const& list);

// The type name of the elements of a list of structures: its prototype's, else
// its first structure's, else empty.
std::string ElementTypeName(MetaObj::MetaList const& list);

// "a,b,c" -> {"a", "b", "c"}. Names are kept exactly, blanks included.
std::vector<std::string> SplitNames(std::string const& value);

// Number of characters (UTF-8 code points) in `text`.
std::size_t DisplayWidth(std::string_view text);

// Read-only view of a command's directives.
class Style {
 public:
  explicit Style(Directives const& directives) : directives_(directives) {}

  // The directive's value, or null when the command did not set it.
  std::string const* Find(std::string const& key) const;

  // The fields of `record` to print, in order: those named by
  // `fields:<Type>` that the record has, else all its fields.
  std::vector<MetaObj::MetaStruct::Field> ShownFields(MetaObj::MetaStruct const& record) const;

  // `header:<Type>` of the record's type, or null.
  std::string const* Header(MetaObj::MetaStruct const& record) const;
  static bool IsNoHeader(std::string const& header) { return header == "<NONE>"; }

  // The heading template with each %Field Name% replaced by the record's
  // field as inline text; a field the record lacks gives empty text, and a
  // '%' without a closing one stays as it is.
  std::string ExpandHeader(std::string const& header, MetaObj::MetaStruct const& record) const;

  // The text of field `name` of `record` with " <unit>" behind it when
  // `units:<Type>.<name>` is set and the text is not empty.
  std::string FieldText(MetaObj::MetaStruct const& record, std::string const& name,
                        MetaObj::MetaObject const* value) const;

  // One-line text of any value: scalars as ScalarText, lists joined by ", ",
  // a structure as "Name: value" pairs joined by ", ". Below the top,
  // structures are set in braces and lists in brackets, so nesting stays
  // readable: "Nic: a, Info: {Key: 1, Flags: [x, y]}".
  std::string InlineText(MetaObj::MetaObject const* value, bool nested = false) const;

  // Column names of a table of records of type `type_name`: `table-columns`
  // when `root` and set, else `table-columns:<Type>`, else `fields:<Type>`;
  // empty when none is set.
  std::vector<std::string> ColumnDirective(std::string const& type_name, bool root) const;

  bool WrapLast() const;

 private:
  Directives const& directives_;
};

// Prints the tree as labelled lines. With `tables`, a field holding a list of
// structures is printed as an indented table instead of blocks.
void PrintSimple(MetaObj::MetaObject const& root, Style const& style, Options const& options,
                 bool tables, std::ostream& out);

// Prints `list` (a list of structures) as a table, each line behind `indent`
// blanks. `root` tells whether the plain `table-columns` directive applies.
void WriteTable(MetaObj::MetaList const& list, Style const& style, Options const& options,
                int indent, bool root, std::ostream& out);

// Formatter entries for a non-null root.
void PrintTable(MetaObj::MetaObject const& root, Style const& style, Options const& options,
                std::ostream& out);
void PrintJson(MetaObj::MetaObject const* root, std::ostream& out);
void PrintXml(MetaObj::MetaObject const* root, std::ostream& out);
void PrintCsv(MetaObj::MetaObject const& root, std::ostream& out);
void PrintJsonBatch(std::vector<BatchEntry> const& entries, std::ostream& out);
void PrintXmlBatch(std::vector<BatchEntry> const& entries, std::ostream& out);

}  // namespace Toolbase::Format::Internal
