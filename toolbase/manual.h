// Manual pages in roff, generated from the loaded tree: toolbase(1) for the
// framework (its options and the plug-ins' own, batches, exit statuses,
// environment, files, examples) and toolbase-WORD(1) for each top-level word
// a plug-in registered (every command below it, its parameters and
// description).
#pragma once

#include <string>
#include <vector>

namespace Toolbase::AutoCli {
class NamespaceNode;
}

namespace Toolbase::Cli {

// Writes toolbase.1 and one toolbase-WORD.1 a top-level word into `folder`
// (which must exist). Returns the files written; throws std::runtime_error
// when one cannot be written.
std::vector<std::string> WriteManualPages(AutoCli::NamespaceNode& root, std::string const& folder);

}  // namespace Toolbase::Cli
