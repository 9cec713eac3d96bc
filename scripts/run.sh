#!/usr/bin/env bash
# Installs what is missing, builds into build/, and runs one command against
# the simulated host (by default `network firewall get`; pass other words to
# run something else).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
ensure_deps build
# Only the executable, its libraries and the plug-in: the tests and benchmarks
# (and what they need installed) are for scripts/test.sh. A build folder that
# scripts/test.sh configured keeps its tests.
options=(-DCMAKE_BUILD_TYPE=RelWithDebInfo)
if ! grep -qs '^TOOLBASE_TESTS:BOOL=ON' build/CMakeCache.txt; then
  options+=(-DTOOLBASE_TESTS=OFF -DTOOLBASE_BENCH=OFF)
fi
BUILD_TARGETS="toolbase_cli toolbase_installed network" build_into build "${options[@]}"
if [ $# -eq 0 ]; then set -- network firewall get; fi
exec build/toolbase "$@"
