// Printing of a command's output tree. Five formatters: "simple" and "table"
// follow the command's presentation directives; "json", "xml" and "csv" print
// the whole tree for scripts and ignore the directives.
//
// Directives (type and field names match exactly, blanks and case included;
// a directive naming a type or field that does not occur has no effect):
//   fields:<Type>        "A,B": print these fields of <Type>, in this order.
//   header:<Type>        heading above each <Type> record, %Field% replaced by
//                        the field (also a hidden one; a missing one gives
//                        empty text). "<NONE>": no heading, and a record that
//                        is a field's value prints flattened into its parent.
//   units:<Type>.<Field> word printed behind a non-empty scalar value.
//   table-columns        columns of the root table; table-columns:<Type> those
//                        of any table of <Type>. Names no row has are dropped.
//   wrap-last            "true": the last table column wraps at blanks to stay
//                        within Options::width (never under 20 characters;
//                        not at all for a width of 0).
//
// "simple": "Label: value" lines; a record below a "Label:" line (or its
// heading) indented by 3; records of a list separated by a blank line; string
// lists as "a, b, c"; a string list root one item a line; a scalar root alone.
// "table": a list of records as columns two blanks apart, a dash row under the
// names; a list in a cell joined by ", ", a record as "Name: value, ..."
// (deeper records in braces, deeper lists in brackets). Other roots print as
// "simple", with record lists inside them as indented tables.
// "json": records as objects in field order, empty values as null.
// "xml": <output> holding <structure typeName>, <field name>, <list type>,
// <boolean>, <integer>, <string>; text that XML cannot carry becomes U+FFFD.
// "csv" (RFC 4180 quoting, "\n" line ends): records as a header line of all
// field names and a line each; in a cell a list is "a,b", a record
// "Name=value;Name=value", deeper ones "[...]" and "{...}". String lists one
// item a line, scalars alone.
// A null root prints nothing, except "null" for json and <output/> for xml.
#pragma once

#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Toolbase::MetaObj {
class MetaObject;
}

namespace Toolbase::Format {

// Directive key to value, as a command declared them ("fields:Nic" -> "Name,Driver").
using Directives = std::map<std::string, std::string>;

struct Options {
  // Width available to a table; a `wrap-last` column wraps to stay within
  // it. 0: no limit (output that is not a terminal never wraps).
  int width = 80;
};

// The formatter names, sorted.
std::vector<std::string> const& FormatterNames();
bool IsFormatter(std::string const& name);

// Prints `root` (which may be null: a command that set no result) with the
// named formatter. An unknown name throws std::invalid_argument.
void Print(std::string const& formatter, std::shared_ptr<MetaObj::MetaObject> const& root,
           Directives const& directives, Options const& options, std::ostream& out);

// One line of a batch, as the batch's document tells it.
struct BatchEntry {
  int line = 0;
  std::string command;  // the line's words, joined by blanks
  int status = 0;       // the line's exit status
  bool applied = false;  // whether its changes, if any, were written
  std::shared_ptr<MetaObj::MetaObject> result;  // null: none
  std::string text;     // what it printed without a result (help)
  std::vector<std::string> messages;
};

// True for the formatters that print a batch as one document.
bool IsDocumentFormatter(std::string const& formatter);

// Prints a whole batch as one document. "json": an array with an object a
// line, {"line", "command", "status", "applied", "result", "messages"}
// ("result" null when the line has none, help text as a string). "xml": one
// <batch> element holding a <line number command status applied> element a
// line, with its result in <output> (or <text>) and a <message> each.
void PrintBatch(std::string const& formatter, std::vector<BatchEntry> const& entries,
                std::ostream& out);

}  // namespace Toolbase::Format
