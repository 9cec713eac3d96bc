// The toolbase command line: plug-in loading, word resolution, parameter
// parsing and checking, help, dispatch and printing.
//
//   toolbase [--host-state PATH] [--formatter NAME] [--list-commands] [--help]
//            WORDS... [PARAMETERS]
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

// A new, empty root node for plug-ins to hang their trees on.
std::shared_ptr<AutoCli::NamespaceNode> NewRoot();

// Loads every shared object (*.so) of `directory`, in name order, and calls
// its AutoCli_RegisterNamespaces with `root`. Plug-ins stay loaded for the
// life of the process. Throws std::runtime_error naming the file when one
// cannot be loaded or lacks the entry, or when the folder cannot be read.
void LoadPlugins(std::string const& directory, AutoCli::NamespaceNode& root);

// The plug-in folder beside the running executable ("<dir>/plugins"), or the
// TOOLBASE_PLUGIN_DIR environment variable when set.
std::string DefaultPluginDirectory();

// Runs one command line (`args` without the program name) against `root`.
// Results go to `out`, messages and usage errors to `err`. `--host-state`
// is passed on to the host library through the TOOLBASE_HOST_STATE
// environment variable. Returns an ExitStatus.
int Run(std::vector<std::string> const& args, AutoCli::NamespaceNode& root, std::ostream& out,
        std::ostream& err);

}  // namespace Toolbase::Cli
