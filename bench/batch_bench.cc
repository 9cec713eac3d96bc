// A batch of 1,000 `portgroup add` lines on the default host, in one process:
// reading the batch, running every line, and the one write at the end. The
// host starts afresh from the default host's state file for every round.
// Target: under 100 ms.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli.h"
#include "host_store.h"
#include "support/harness.h"

namespace {

void BM_BatchThousandPortgroupAdds(benchmark::State& state) {
  char dir_template[] = "/tmp/toolbase-bench-batch-XXXXXX";
  std::string dir = mkdtemp(dir_template);
  std::string host_state = dir + "/state.json";
  std::string batch = dir + "/batch.txt";
  {
    std::ofstream file(batch);
    for (int i = 0; i < 1000; ++i) {
      file << "network vswitch standard portgroup add --vswitch-name vSwitch0 --portgroup-name pg-"
           << i << '\n';
    }
  }
  setenv("TOOLBASE_HOST_STATE", host_state.c_str(), 1);
  auto& root = TestSupport::PluginRoot();
  // Seed the default host once; every round starts from a copy of it.
  std::string seed = dir + "/seed.json";
  {
    std::ostringstream out;
    std::ostringstream err;
    OrvkCtl::Sim::ResetHostForTest();
    Toolbase::Cli::Run({"network", "firewall", "get"}, root, out, err);
    std::filesystem::copy_file(host_state, seed);
  }
  for (auto _ : state) {
    state.PauseTiming();
    OrvkCtl::Sim::ResetHostForTest();
    std::filesystem::copy_file(seed, host_state, std::filesystem::copy_options::overwrite_existing);
    state.ResumeTiming();
    std::ostringstream out;
    std::ostringstream err;
    if (Toolbase::Cli::Run({"--batch", batch}, root, out, err) != 0) {
      state.SkipWithError(err.str().c_str());
      break;
    }
  }
  OrvkCtl::Sim::ResetHostForTest();
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_BatchThousandPortgroupAdds)->Unit(benchmark::kMillisecond);

// A batch whose fourth line opens a quote that is never closed: reading it
// finds that once, so the cost grows linearly with the lines after it.
void BM_BatchWithAnUnclosedQuote(benchmark::State& state) {
  char dir_template[] = "/tmp/toolbase-bench-quote-XXXXXX";
  std::string dir = mkdtemp(dir_template);
  std::string batch = dir + "/batch.txt";
  {
    std::ofstream file(batch);
    file << "network firewall get\n\n# it's a comment\nnetwork nic list --formatter 'json\n";
    for (int64_t i = 0; i < state.range(0); ++i) file << "network nic list\n";
  }
  setenv("TOOLBASE_HOST_STATE", (dir + "/state.json").c_str(), 1);
  auto& root = TestSupport::PluginRoot();
  for (auto _ : state) {
    std::ostringstream out;
    std::ostringstream err;
    if (Toolbase::Cli::Run({"--batch", batch}, root, out, err) != 2) {
      state.SkipWithError("the unclosed quote was not refused");
      break;
    }
  }
  state.SetComplexityN(state.range(0));
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_BatchWithAnUnclosedQuote)
    ->RangeMultiplier(4)
    ->Range(1000, 64000)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

}  // namespace
