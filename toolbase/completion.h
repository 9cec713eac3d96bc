// Shell completion generated from the command tree at run time: the script
// asks `toolbase --complete` for the candidates, so a new plug-in completes
// without a new script.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Toolbase::AutoCli {
class NamespaceNode;
}

namespace Toolbase::Cli {

// Prints the completion script for `shell` ("bash" or "zsh"); false for
// another shell.
bool PrintCompletionScript(std::string const& shell, std::ostream& out);

// The candidates for the last of `words` (the word being typed, possibly
// empty), given the words before it (the command line without the program
// name): global options, command words at every level, the parameters of the
// command at hand, the words of StringEnum/IntEnum constraints and truth
// values, and the names on the host for the parameters that name NICs,
// switches, port groups, interfaces and netstacks. Sorted, starting with the
// typed word; empty when nothing fits (the script then completes file names).
std::vector<std::string> CompletionCandidates(AutoCli::NamespaceNode& root,
                                              std::vector<std::string> const& words);

}  // namespace Toolbase::Cli
