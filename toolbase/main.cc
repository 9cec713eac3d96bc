// toolbase: loads the command plug-ins and runs one command line.
#include <iostream>
#include <string>
#include <vector>

#include "cli.h"
#include "toolbase/auto_cli.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  // The tree lives as long as the process: taking its hundreds of nodes
  // apart just before exit would only cost time.
  static auto* const root = new std::shared_ptr<Toolbase::AutoCli::NamespaceNode>(
      Toolbase::Cli::NewRoot());
  try {
    Toolbase::Cli::LoadPlugins(Toolbase::Cli::DefaultPluginDirectory(), **root);
  } catch (std::exception const& error) {
    std::cerr << "Error: " << error.what() << '\n';
    return Toolbase::Cli::kCommandError;
  }
  int status = Toolbase::Cli::Run(args, **root, std::cout, std::cerr);
  std::cout.flush();
  return status;
}
