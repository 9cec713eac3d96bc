// The toolbase command line: plug-in loading, word resolution, parameter
// parsing and checking, help, dispatch and printing.
//
//   toolbase [PLUG-IN OPTIONS] [--formatter NAME] [--dry-run] [--help] WORDS... [PARAMETERS]
//   toolbase [PLUG-IN OPTIONS] --list-commands [WORDS...]
//   toolbase help [WORDS...]
//   toolbase [PLUG-IN OPTIONS] [--formatter NAME] [--dry-run] --batch FILE [--batch-continue]
//   toolbase --completion bash|zsh
//   toolbase --version
#pragma once

#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "plugins.h"

namespace Toolbase::AutoCli {
class NamespaceNode;
}
namespace Toolbase::MetaObj {
class MetaObject;
}

namespace Toolbase::Cli {

enum ExitStatus {
  kSuccess = 0,
  // The command ran and reported errors (or failed outside its own handling).
  kCommandError = 1,
  // The line could not be used: unknown word or parameter, bad value, ...
  kUsageError = 2,
  // Stopped by a signal: this plus the signal's number, as a shell tells a
  // process the signal ended.
  kSignalBase = 128,
};

// A new, empty root node for plug-ins to hang their trees on.
std::shared_ptr<AutoCli::NamespaceNode> NewRoot();

// What one line of a batch produced, for the batch to print in its document
// instead of the line printing it.
struct LineOutcome {
  // In: the formatter the batch prints with (empty: each line's default).
  std::string batch_formatter;
  // Out: the result, the directives and the formatter it is to be printed
  // with; `result` stays null when no command ran or it set none.
  std::shared_ptr<MetaObj::MetaObject> result;
  std::map<std::string, std::string> directives;
  std::string formatter;
  // Whether the line's default formatter prints nothing for a result of true.
  bool quiet_success = false;
  // Set for a command that takes secrets: the line as a batch document shows
  // it (the command's words only), since its parameters may hold a secret.
  std::string shown_line;
};

// Runs one command line (`args` without the program name) against `root`.
// Results go to `out`, messages and usage errors to `err`. The global options
// of plug-ins are handed to the plug-in that owns them. Returns an ExitStatus.
int Run(std::vector<std::string> const& args, AutoCli::NamespaceNode& root, std::ostream& out,
        std::ostream& err);

// Runs one line of a batch: as Run, except that the options that start a
// batch, print the completion script or the version, --dry-run and the
// plug-ins' global options are refused, and that a command's result is
// handed back in `outcome` unprinted.
int RunBatchLine(std::vector<std::string> const& args, AutoCli::NamespaceNode& root,
                 std::ostream& out, std::ostream& err, LineOutcome& outcome);

// The width tables may take on `out`: the terminal's when `out` is standard
// output on a terminal (its own size, else COLUMNS, else 80); 0 (no limit)
// for anything else.
int OutputWidth(std::ostream const& out);

}  // namespace Toolbase::Cli
