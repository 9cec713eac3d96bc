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

// One candidate: the word, and a line that says what it is (may be empty).
struct Candidate {
  std::string word;
  std::string description;
};

// The candidates for the last of `words` (the word being typed, possibly
// empty), given the words before it (the command line without the program
// name): global options (the framework's and the plug-ins'), command words
// at every level (and `help` at the top), the parameters of the command at
// hand, the words of StringEnum/IntEnum constraints and truth values, and the
// names on the host for the parameters that plug-ins declared completion
// sources for (looked up without writing anything). A typed `--name=` gets
// the values of --name behind it. Sorted, starting with the typed word; empty
// when nothing fits (the script then completes file names).
std::vector<Candidate> CompletionCandidates(AutoCli::NamespaceNode& root,
                                            std::vector<std::string> const& words);

// One candidate a line; with `describe`, as "word:description" with ':'
// and '\\' in the word behind a backslash (as zsh's _describe takes them).
void PrintCandidates(std::vector<Candidate> const& candidates, bool describe, std::ostream& out);

}  // namespace Toolbase::Cli
