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
  // Global options every line inherits (a line's own come after them).
  std::string formatter;
  // "-": standard input.
  std::string file;
  // Run every line; keep the changes of each line that succeeds.
  bool keep_going = false;
};

// Runs the lines of `options.file` (one command a line; blank lines and
// comments skipped) against `root`. Without keep_going the first failing line
// stops the batch, nothing of it reaches the host's state file, and its status
// is returned; else every line runs on its own, all or nothing, and the status
// of the first failing line is returned. With the json formatter the outputs
// form one JSON array, an element per line (null for a line without output).
int RunBatch(BatchOptions const& options, std::istream& standard_input,
             AutoCli::NamespaceNode& root, std::ostream& out, std::ostream& err);

}  // namespace Toolbase::Cli
