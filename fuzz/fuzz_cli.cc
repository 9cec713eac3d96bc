// Command lines against the real tree: the input is split at NUL bytes into
// arguments and run as `toolbase ARGS...` would run them. Every host
// operation is made to fail, so runs change nothing and stay independent;
// what is exercised is word resolution, parameter parsing and checking, help,
// the plug-in's own checks up to its first host call, and the formatters.
#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "cli.h"
#include "fault.h"
#include "toolbase/auto_cli.h"

namespace {

Toolbase::AutoCli::NamespaceNode& Root() {
  static auto root = [] {
    // A state file of the fuzzer's own, in case some path reaches the store.
    static std::string const state = "/tmp/toolbase-fuzz-cli-" + std::to_string(getpid()) + ".json";
    setenv("TOOLBASE_HOST_STATE", state.c_str(), 1);
    OrvkCtl::Sim::SetFaultForTest("*", "host operation refused while fuzzing");
    auto node = Toolbase::Cli::NewRoot();
    Toolbase::Cli::LoadPlugins(TOOLBASE_PLUGIN_DIR, *node);
    return node;
  }();
  return *root;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
  auto& root = Root();
  std::vector<std::string> args;
  std::string current;
  for (size_t i = 0; i < size; ++i) {
    if (data[i] == 0) {
      args.push_back(current);
      current.clear();
    } else {
      current.push_back(static_cast<char>(data[i]));
    }
  }
  if (!current.empty() || args.empty()) args.push_back(current);
  // --host-state would send runs to files of the fuzzer's choosing, and
  // --manual-pages write there.
  for (auto const& arg : args) {
    if (arg.find("host-state") != std::string::npos) return 0;
    if (arg.find("manual-pages") != std::string::npos) return 0;
  }
  std::ostringstream out;
  std::ostringstream err;
  int const status = Toolbase::Cli::Run(args, root, out, err);
  if (status < 0 || status > 2) __builtin_trap();
  if (status != 0 && err.str().empty()) __builtin_trap();  // a failure always says why
  return 0;
}
