#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test twice: a normal
# build in build/, and one under AddressSanitizer and UndefinedBehaviorSanitizer
# in build-asan/, then a short run of every fuzz target. Between the two, the
# Debian packages are built, checked, installed and purged.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
ensure_deps
jobs=$(nproc)

build_into build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTOOLBASE_TESTS=ON -DTOOLBASE_BENCH=ON
(cd build && ctest --output-on-failure -j"$jobs")
# The Debian packages: lintian, install, a command, purge (needs root).
bash scripts/package_test.sh build .

build_into build-asan -DCMAKE_BUILD_TYPE=Debug -DTOOLBASE_SANITIZE=ON -DTOOLBASE_BENCH=OFF
(cd build-asan &&
  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --output-on-failure -j"$jobs")

# Each libFuzzer target briefly (build-fuzz/, clang); see scripts/fuzz.sh.
FUZZ_SECONDS=${FUZZ_SECONDS:-8} bash scripts/fuzz.sh
