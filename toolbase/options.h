// The framework's own global options, in the order help shows them. Plug-ins
// add theirs through their session (toolbase/session.h); these names are
// reserved.
#pragma once

#include <string_view>

namespace Toolbase::Cli {

struct FrameworkOption {
  char const* name;        // without "--"
  char const* value_name;  // null for a flag
  char const* description;
};

inline constexpr FrameworkOption kFrameworkOptions[] = {
    {"formatter", "name", "Output formatter: simple, table, json, xml or csv."},
    {"list-commands", nullptr, "List the command paths (under WORDS... when given)."},
    {"dry-run", nullptr,
     "Run the command or batch and print what it prints, but write no change."},
    {"batch", "file",
     "Run one command a line from the file (- for standard input), all or nothing."},
    {"batch-continue", nullptr,
     "With --batch: run every line, keeping the changes of the lines that succeed."},
    {"completion", "shell", "Print the completion script for bash or zsh."},
    {"version", nullptr, "Show the version of toolbase."},
    {"help", nullptr, "Show help for a namespace or command (also: toolbase help WORDS...)."},
};

// The option of that name (without "--"), or null. `--complete`, which the
// completion scripts use, is not listed.
inline FrameworkOption const* FindFrameworkOption(std::string_view name) {
  for (auto const& option : kFrameworkOptions) {
    if (name == option.name) return &option;
  }
  return nullptr;
}

}  // namespace Toolbase::Cli
