// toolbase: loads the command plug-ins and runs one command line.
#include <cerrno>
#include <cstdio>
#include <cstring>
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
// would only cost time. What a plug-in changes it writes, and any lock it
// takes, in the command itself; locks go with the process. Under AddressSanitizer
// the process exits as usual, so that its leak check runs. Output that could
// not be written (a full disk, a closed pipe) fails the run.
[[noreturn]] void Finish(int status) {
  std::cout.flush();
  bool const written = std::cout.good() && std::fflush(stdout) == 0 && !std::ferror(stdout);
  if (!written && status == Toolbase::Cli::kSuccess) {
    std::cerr << "Error: cannot write the output: " << std::strerror(errno ? errno : EIO)
              << '\n';
    status = Toolbase::Cli::kCommandError;
  }
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
  Toolbase::Cli::LoadPlugins(Toolbase::Cli::PluginSearchPath(), **root, std::cerr);
  Finish(Toolbase::Cli::Run(args, **root, std::cout, std::cerr));
}
