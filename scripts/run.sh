#!/usr/bin/env bash
# Installs what is missing, builds into build/, and runs one command against
# the simulated host (by default `network firewall get`; pass other words to
# run something else).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
ensure_deps
# Only the executable, its libraries and the plug-in: the tests and benchmarks
# are built by scripts/test.sh.
BUILD_TARGETS="toolbase_cli network" build_into build -DCMAKE_BUILD_TYPE=RelWithDebInfo
if [ $# -eq 0 ]; then set -- network firewall get; fi
exec build/toolbase "$@"
