// Batches on the default host, in one process: reading the batch, running
// every line, and the one write at the end. The host starts afresh from the
// default host's state file for every round. 1,000 `portgroup add` lines:
// target under 100 ms.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "cli.h"
#include "host_store.h"
#include "support/harness.h"

namespace {

// Runs a batch of `count` lines, line `i` from `line(i)`, on the default
// host, which every round starts afresh from its state file.
template <class Line>
void RunBatchOnTheDefaultHost(benchmark::State& state, int64_t count, Line const& line) {
  char dir_template[] = "/tmp/toolbase-bench-batch-XXXXXX";
  std::string dir = mkdtemp(dir_template);
  std::string host_state = dir + "/state.json";
  std::string batch = dir + "/batch.txt";
  {
    std::ofstream file(batch);
    for (int64_t i = 0; i < count; ++i) file << line(i) << '\n';
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
  state.SetComplexityN(count);
  OrvkCtl::Sim::ResetHostForTest();
  std::filesystem::remove_all(dir);
}

std::string PortgroupAdd(int64_t i) {
  return "network vswitch standard portgroup add --vswitch-name vSwitch0 --portgroup-name pg-" +
         std::to_string(i);
}

void BM_BatchThousandPortgroupAdds(benchmark::State& state) {
  RunBatchOnTheDefaultHost(state, 1000, PortgroupAdd);
}
BENCHMARK(BM_BatchThousandPortgroupAdds)->Unit(benchmark::kMillisecond);

// Batches of port group adds and of hosts file lines: each line's change
// keeps what it changes, not the host, so the cost grows linearly with the
// lines (targets: 10,000 port group adds within 300 ms).
void BM_BatchOfPortgroupAdds(benchmark::State& state) {
  RunBatchOnTheDefaultHost(state, state.range(0), PortgroupAdd);
}
BENCHMARK(BM_BatchOfPortgroupAdds)
    ->RangeMultiplier(4)
    ->Range(1000, 16000)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

void BM_BatchOfHostsFileLines(benchmark::State& state) {
  RunBatchOnTheDefaultHost(state, state.range(0), [](int64_t i) {
    return "network ip hosts add -I 10." + std::to_string(i >> 16 & 255) + "." +
           std::to_string(i >> 8 & 255) + "." + std::to_string(i & 255) + " -H h" +
           std::to_string(i);
  });
}
BENCHMARK(BM_BatchOfHostsFileLines)
    ->RangeMultiplier(4)
    ->Range(1000, 64000)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

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
