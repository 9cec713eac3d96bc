// Plug-ins: where they are looked for, how they are loaded, and what each
// offered through its session (toolbase/session.h).
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "toolbase/session.h"

namespace Toolbase::AutoCli {
class NamespaceNode;
}

namespace Toolbase::Cli {

// One plug-in loaded by LoadPlugins: its file, its dlopen handle, the
// top-level words it registered, and its session.
struct LoadedPlugin {
  std::string file;
  void* handle = nullptr;
  std::vector<std::string> words;
  std::vector<AutoCli::GlobalOption> options;
  bool has_transaction = false;
  AutoCli::Transaction transaction{};
  std::vector<AutoCli::CompletionSource> sources;
};

// The plug-ins loaded so far in this process, in load order; a file loaded
// again replaces its earlier entry.
std::vector<LoadedPlugin> const& LoadedPlugins();

// The folders plug-ins are looked for in, in order: each folder of
// TOOLBASE_PLUGIN_PATH (colon-separated), then the "plugins" folder beside
// the running executable (the build tree), then the installed folder
// ("<dir>/../lib/toolbase/plugins").
std::vector<std::string> PluginSearchPath();

// Loads every shared object (*.so) of each folder, in name order, folder by
// folder; a file name already loaded from an earlier folder is passed over,
// and so is a missing folder. A plug-in that cannot be loaded (or whose
// entries fail) is skipped with one line on `warnings`; the others load.
void LoadPlugins(std::vector<std::string> const& folders, AutoCli::NamespaceNode& root,
                 std::ostream& warnings);

// Loads every shared object of `directory` as above, but throws
// std::runtime_error naming the file when one cannot be loaded or lacks the
// entry, or when the folder cannot be read.
void LoadPlugins(std::string const& directory, AutoCli::NamespaceNode& root);

// The plug-in option of that name (without "--"), or null.
AutoCli::GlobalOption const* FindPluginOption(std::string const& name);

// The transactions of the loaded plug-ins, each once (plug-ins that share a
// host library hand over the same entries).
std::vector<AutoCli::Transaction> PluginTransactions();

// Begins each of `transactions`, after switching each to read-only first
// when `read_only` (a dry run). When one cannot begin, aborts those begun and
// returns its message; else null.
char const* BeginTransactions(std::vector<AutoCli::Transaction> const& transactions,
                              bool read_only);

// The completion source for parameter `parameter` of a command under the
// top-level word `word`, or null.
AutoCli::CompletionSource const* FindCompletionSource(std::string const& word,
                                                      std::string const& parameter);

}  // namespace Toolbase::Cli
