// Help texts of namespaces and commands.
#pragma once

#include <iosfwd>

namespace Toolbase::AutoCli {
class NamespaceNode;
class CommandSpec;
}  // namespace Toolbase::AutoCli

namespace Toolbase::Cli {

// Usage, description and the children of a namespace, namespaces first, each
// group sorted by name. For the root it also lists the global options.
void PrintNamespaceHelp(AutoCli::NamespaceNode& node, std::ostream& out);

// Usage, description and parameters of a command: long and short names,
// type, whether required, and the description with its value lists.
void PrintCommandHelp(AutoCli::CommandSpec& command, std::ostream& out);

}  // namespace Toolbase::Cli
