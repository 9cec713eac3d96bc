#!/usr/bin/env bash
# Builds the libFuzzer targets into build-fuzz/ (clang, with AddressSanitizer
# and UndefinedBehaviorSanitizer) and runs each one: first over its kept
# crash inputs (fuzz/regressions/<target>/), then fuzzing from its checked-in
# seed corpus (fuzz/corpus/<target>/) for FUZZ_SECONDS seconds (default 8).
# New inputs go to a scratch copy of the corpus; the checked-in one is not
# touched. A crash leaves its input in build-fuzz/artifacts/.
#
#   bash scripts/fuzz.sh                      # the short run CI does
#   FUZZ_SECONDS=600 bash scripts/fuzz.sh     # the longer run
#   bash scripts/fuzz.sh fuzz_ipv6            # some targets only
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
ensure_deps

seconds=${FUZZ_SECONDS:-8}
targets=("$@")
[ ${#targets[@]} -gt 0 ] ||
  targets=(fuzz_cli fuzz_state fuzz_state_commands fuzz_ipv4 fuzz_ipv6 fuzz_ipv4_network fuzz_ipv6_network fuzz_mac)

CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTOOLBASE_FUZZ=ON -DTOOLBASE_TESTS=OFF -DTOOLBASE_BENCH=OFF >/dev/null
cmake --build build-fuzz -j"$(nproc)" --target "${targets[@]}"

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
mkdir -p build-fuzz/artifacts
for target in "${targets[@]}"; do
  regressions=fuzz/regressions/$target
  if [ -d "$regressions" ] && [ -n "$(ls -A "$regressions")" ]; then
    echo "== $target: kept crash inputs" >&2
    build-fuzz/$target "$regressions"/* >/dev/null 2>&1 ||
      { build-fuzz/$target "$regressions"/*; exit 1; }
  fi
  scratch=build-fuzz/corpus/$target
  rm -rf "$scratch"
  mkdir -p "$scratch"
  cp fuzz/corpus/"$target"/* "$scratch"/
  echo "== $target: fuzzing for ${seconds}s" >&2
  build-fuzz/$target "$scratch" -max_total_time="$seconds" -timeout=10 \
    -artifact_prefix=build-fuzz/artifacts/"$target"- -print_final_stats=1 2>build-fuzz/$target.log ||
    { tail -n 60 build-fuzz/$target.log >&2; exit 1; }
  grep -E "stat::number_of_executed_units|stat::peak_rss_mb" build-fuzz/$target.log >&2 || true
done
