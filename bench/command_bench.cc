// Costs inside one toolbase process: building the plug-in's tree, and running
// a command with the host state already loaded (warm) or loaded afresh (cold).
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <stdlib.h>

#include <filesystem>
#include <sstream>

#include "cli.h"
#include "host_store.h"
#include "support/harness.h"
#include "toolbase/auto_cli.h"

namespace {

// The plug-in's entry building the whole tree on a new root; the plug-in is
// already loaded and taking the tree apart is left out of the timing.
void BM_BuildTree(benchmark::State& state) {
  TestSupport::PluginRoot();
  auto const& plugins = Toolbase::Cli::LoadedPlugins();
  if (plugins.empty()) return state.SkipWithError("no plug-in loaded");
  auto entry = reinterpret_cast<AutoCliRegisterNamespacesFn>(
      dlsym(plugins.front().handle, "AutoCli_RegisterNamespaces"));
  if (!entry) return state.SkipWithError("plug-in without its entry");
  for (auto _ : state) {
    auto root = Toolbase::Cli::NewRoot();
    void* word = root.get();
    entry(&word);
    benchmark::DoNotOptimize(root);
    state.PauseTiming();
    root.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_BuildTree);

// What a process pays for its tree: the plug-in folder scanned, the (already
// mapped) plug-in opened again, the tree built and taken apart.
void BM_LoadPluginsAndTree(benchmark::State& state) {
  for (auto _ : state) {
    auto root = TestSupport::NewPluginRoot();
    benchmark::DoNotOptimize(root);
  }
}
BENCHMARK(BM_LoadPluginsAndTree);

class StateDir {
 public:
  StateDir() {
    char dir_template[] = "/tmp/toolbase-bench-XXXXXX";
    dir_ = mkdtemp(dir_template);
    setenv("TOOLBASE_HOST_STATE", (dir_ + "/state.json").c_str(), 1);
    OrvkCtl::Sim::ResetHostForTest();
  }
  ~StateDir() {
    OrvkCtl::Sim::ResetHostForTest();
    std::filesystem::remove_all(dir_);
  }

 private:
  std::string dir_;
};

void RunCommand(benchmark::State& state, std::vector<std::string> const& args, bool cold) {
  StateDir dir;
  auto& root = TestSupport::PluginRoot();
  for (auto _ : state) {
    if (cold) OrvkCtl::Sim::ResetHostForTest();
    std::ostringstream out;
    std::ostringstream err;
    int status = Toolbase::Cli::Run(args, root, out, err);
    if (status != 0) state.SkipWithError(err.str().c_str());
  }
}

void BM_FirewallGetWarm(benchmark::State& state) {
  RunCommand(state, {"network", "firewall", "get"}, false);
}
BENCHMARK(BM_FirewallGetWarm);

void BM_FirewallGetCold(benchmark::State& state) {
  RunCommand(state, {"network", "firewall", "get"}, true);
}
BENCHMARK(BM_FirewallGetCold);

void BM_FirewallSetCold(benchmark::State& state) {
  RunCommand(state, {"network", "firewall", "set", "--enabled", "true", "-d", "false"}, true);
}
BENCHMARK(BM_FirewallSetCold);

}  // namespace

BENCHMARK_MAIN();
