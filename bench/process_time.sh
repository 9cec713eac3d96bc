#!/usr/bin/env bash
# Times `toolbase network firewall get` as a whole process, beside /bin/true,
# on a fresh temporary host state. Uses hyperfine when installed, else a loop.
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${RUNS:-200}
state=$(mktemp -d)
trap 'rm -rf "$state"' EXIT
export TOOLBASE_HOST_STATE=$state/host-state.json
build/toolbase network firewall get >/dev/null  # seed the state file
if command -v hyperfine >/dev/null; then
  hyperfine -N --warmup 10 --runs "$runs" /bin/true "build/toolbase network firewall get"
  exit
fi
time_loop() {
  local start end
  start=$(date +%s%N)
  for ((i = 0; i < runs; i++)); do "$@" >/dev/null; done
  end=$(date +%s%N)
  echo "$(( (end - start) / runs / 1000 )) us per run: $*"
}
time_loop /bin/true
time_loop build/toolbase network firewall get
time_loop build/toolbase network --help
