#!/usr/bin/env bash
# The C++ runtime comes from the toolbase executable: neither it nor the
# libraries and the plug-in name libstdc++.so or libgcc_s.so, commands run
# without loading them (binding the runtime's symbols would cost every process
# more than half of its start), every symbol the libraries and the plug-in use
# is found (the libraries are linked without the runtime, so the linker
# cannot tell), and exceptions cross from one object to another.
#   runtime_test.sh BUILD_DIR
set -euo pipefail
build=$1
fail() { echo "FAIL: $*" >&2; exit 1; }

for file in toolbase libtoolbase.so liborvkctl.so plugins/libnetwork.so; do
  dynamic=$(readelf -d "$build/$file")
  [[ $dynamic != *"libstdc++"* ]] || fail "$file names libstdc++.so"
  [[ $dynamic != *"libgcc_s"* ]] || fail "$file names libgcc_s.so"
done

work=$(mktemp -d /tmp/toolbase-runtime-XXXXXX)
trap 'rm -rf "$work"' EXIT
export TOOLBASE_HOST_STATE=$work/host-state.json
LD_BIND_NOW=1 "$build/toolbase" network firewall get >/dev/null ||
  fail "a symbol of the libraries or the plug-in is not found"
for words in "--help" "network ip interface list" "network vswitch standard portgroup add -v vSwitch0 -p runtime"; do
  # shellcheck disable=SC2086
  loaded=$(LD_DEBUG=libs "$build/toolbase" $words 2>&1 >/dev/null)
  [[ $loaded == *"calling init:"*"libnetwork.so"* ]] || fail "$words: no plug-in loaded: $loaded"
  [[ $loaded != *"libstdc++"* ]] || fail "$words: loaded libstdc++.so"
  [[ $loaded != *"libgcc_s"* ]] || fail "$words: loaded libgcc_s.so"
done

# Thrown in the host library, caught in the plug-in; thrown in the framework
# for a usage error, caught there.
status=0
out=$(LD_BIND_NOW=1 "$build/toolbase" network vswitch standard portgroup add -v vSwitch0 \
  -p runtime 2>&1) || status=$?
[[ $status == 1 && $out == *"already exists on virtual switch vSwitch0"* ]] ||
  fail "a host error did not reach the plug-in ($status): $out"
status=0
out=$(LD_BIND_NOW=1 "$build/toolbase" network vswitch standard portgroup add -v vSwitch0 2>&1) ||
  status=$?
[[ $status == 2 && $out == *"portgroup-name"* ]] ||
  fail "a usage error was not reported ($status): $out"

