// Printing of a command's output tree. Five formatters: "simple" and "table"
// follow the command's presentation directives; "json", "xml" and "csv" print
// the whole tree for scripts and ignore the directives.
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
  // Width available to a table; a `wrap-last` column wraps to stay within it.
  int width = 80;
};

// The formatter names, sorted.
std::vector<std::string> const& FormatterNames();
bool IsFormatter(std::string const& name);

// Prints `root` (which may be null: a command that set no result) with the
// named formatter. An unknown name throws std::invalid_argument.
void Print(std::string const& formatter, std::shared_ptr<MetaObj::MetaObject> const& root,
           Directives const& directives, Options const& options, std::ostream& out);

}  // namespace Toolbase::Format
