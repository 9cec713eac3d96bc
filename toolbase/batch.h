// Batches: many command lines in one process, against one loaded host, with
// their changes applied all or nothing.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Toolbase::AutoCli {
class NamespaceNode;
}

namespace Toolbase::Cli {

// Splits `text` into words as a POSIX shell does, without expansions: blanks
// separate words; '...' keeps everything literally; "..." keeps everything
// but a backslash before $ ` " \ or a newline; a backslash outside quotes
// keeps the next character (and joins lines before a newline); a word that
// starts with # starts a comment that runs to the end of the line. Returns
// false when `text` ends inside quotes or after a lone backslash, so that the
// caller can append the next line and split again; `words` is then unusable.
bool SplitWords(std::string const& text, std::vector<std::string>& words);

struct BatchOptions {
  // The formatter of every line: json and xml print the batch as one
  // document; the others print each line as it prints on its own (a line may
  // name its own simple, table or csv).
  std::string formatter;
  // "-": standard input.
  std::string file;
  // Run every line; keep the changes of each line that succeeds.
  bool keep_going = false;
  // Run and print everything, write nothing.
  bool dry_run = false;
};

// Runs the lines of `options.file` (one command a line; blank lines and
// comments skipped) against `root`, inside the transactions of the loaded
// plug-ins. Without keep_going the first failing line stops the batch,
// nothing of it is written, and its status is returned; else every line runs
// on its own, all or nothing, and the status of the first failing line is
// returned. Messages go to `err` as each line runs; results are printed when
// the batch is over, when it is known what was applied: as one document
// (Format::PrintBatch) for json and xml, else line by line, a result of true
// printed as false for a line whose changes were not applied.
int RunBatch(BatchOptions const& options, std::istream& standard_input,
             AutoCli::NamespaceNode& root, std::ostream& out, std::ostream& err);

}  // namespace Toolbase::Cli
