// Costs inside one toolbase process: building the plug-in's tree, and running
// a command with the host state already loaded (warm) or loaded afresh (cold).
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <sstream>

#include "cli.h"
#include "host_store.h"
#include "support/harness.h"
#include "toolbase/auto_cli.h"

namespace {

void BM_BuildTree(benchmark::State& state) {
  for (auto _ : state) {
    auto root = TestSupport::NewPluginRoot();
    benchmark::DoNotOptimize(root);
  }
}
BENCHMARK(BM_BuildTree);

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
