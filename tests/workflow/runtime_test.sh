#!/usr/bin/env bash
# The C++ runtime comes from the toolbase executable: neither it nor the
# libraries and the plug-in name libstdc++.so, commands run without loading
# it (binding its symbols would cost every process more than half of its
# start), and every symbol the libraries and the plug-in use is found (the
# libraries are linked without the runtime, so the linker cannot tell).
#   runtime_test.sh BUILD_DIR
set -euo pipefail
build=$1
fail() { echo "FAIL: $*" >&2; exit 1; }

for file in toolbase libtoolbase.so liborvkctl.so plugins/libnetwork.so; do
  dynamic=$(readelf -d "$build/$file")
  [[ $dynamic != *"libstdc++"* ]] || fail "$file names libstdc++.so"
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
done
