// toolbase: loads the command plug-ins and runs one command line.
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "cli.h"
#include "toolbase/auto_cli.h"

#if defined(__SANITIZE_ADDRESS__)
#define TOOLBASE_CHECKS_LEAKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TOOLBASE_CHECKS_LEAKS 1
#endif
#endif

namespace {

// Ends the process once its output is out. What is left in memory (the tree,
// the host as loaded, the constant strings of every object) goes with the
// process: running the destructors of a thousand objects just before exit
// would only cost time. The host state is written, and its lock taken, by
// the command itself; the lock goes with the process. Under AddressSanitizer
// the process exits as usual, so that its leak check runs.
[[noreturn]] void Finish(int status) {
  std::cout.flush();
  std::cerr.flush();
  std::fflush(nullptr);
#ifdef TOOLBASE_CHECKS_LEAKS
  std::exit(status);
#else
  std::_Exit(status);
#endif
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  // The tree lives as long as the process (see Finish).
  static auto* const root = new std::shared_ptr<Toolbase::AutoCli::NamespaceNode>(
      Toolbase::Cli::NewRoot());
  try {
    Toolbase::Cli::LoadPlugins(Toolbase::Cli::DefaultPluginDirectory(), **root);
  } catch (std::exception const& error) {
    std::cerr << "Error: " << error.what() << '\n';
    Finish(Toolbase::Cli::kCommandError);
  }
  Finish(Toolbase::Cli::Run(args, **root, std::cout, std::cerr));
}
