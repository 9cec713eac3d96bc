#!/usr/bin/env bash
# Installs what is missing, builds into build/, and runs one command against
# the simulated host (by default `network firewall get`; pass other words to
# run something else).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
ensure_deps
build_into build -DCMAKE_BUILD_TYPE=RelWithDebInfo
if [ $# -eq 0 ]; then set -- network firewall get; fi
exec build/toolbase "$@"
