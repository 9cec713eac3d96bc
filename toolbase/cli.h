// The toolbase command line: plug-in loading, word resolution, parameter
// parsing and checking, help, dispatch and printing.
//
//   toolbase [--host-state PATH] [--formatter NAME] [--list-commands] [--help]
//            WORDS... [PARAMETERS]
//   toolbase [--host-state PATH] [--formatter NAME] --batch FILE [--batch-continue]
//   toolbase --completion bash|zsh
//   toolbase --version
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Toolbase::AutoCli {
class NamespaceNode;
}

namespace Toolbase::Cli {

enum ExitStatus {
  kSuccess = 0,
  // The command ran and reported errors (or failed outside its own handling).
  kCommandError = 1,
  // The line could not be used: unknown word or parameter, bad value, ...
  kUsageError = 2,
};

// One plug-in loaded by LoadPlugins: its file, its dlopen handle, and the
// top-level words it registered.
struct LoadedPlugin {
  std::string file;
  void* handle = nullptr;
  std::vector<std::string> words;
};

// The plug-ins loaded so far in this process, in load order; a file loaded
// again replaces its earlier entry.
std::vector<LoadedPlugin> const& LoadedPlugins();

// A new, empty root node for plug-ins to hang their trees on.
std::shared_ptr<AutoCli::NamespaceNode> NewRoot();

// Loads every shared object (*.so) of `directory`, in name order, and calls
// its AutoCli_RegisterNamespaces with `root`. Plug-ins stay loaded for the
// life of the process. Throws std::runtime_error naming the file when one
// cannot be loaded or lacks the entry, or when the folder cannot be read.
void LoadPlugins(std::string const& directory, AutoCli::NamespaceNode& root);

// The TOOLBASE_PLUGIN_DIR environment variable when set, else the plug-in
// folder beside the running executable ("<dir>/plugins") when there is one
// (the build tree), else the installed one ("<dir>/../lib/toolbase/plugins").
std::string DefaultPluginDirectory();

// Runs one command line (`args` without the program name) against `root`.
// Results go to `out`, messages and usage errors to `err`. `--host-state`
// is passed on to the host library through the TOOLBASE_HOST_STATE
// environment variable. Returns an ExitStatus.
int Run(std::vector<std::string> const& args, AutoCli::NamespaceNode& root, std::ostream& out,
        std::ostream& err);

// Runs one line of a batch: as Run, except that the options that start a
// batch, print the completion script or the version are refused.
int RunBatchLine(std::vector<std::string> const& args, AutoCli::NamespaceNode& root,
                 std::ostream& out, std::ostream& err);

}  // namespace Toolbase::Cli
