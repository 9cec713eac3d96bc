#!/usr/bin/env bash
# Installs the build into a temporary prefix and checks the installed tree
# works on its own: toolbase runs against a fresh host state, and a plug-in
# built from the installed headers and pkg-config file alone is loaded and runs.
#   install_test.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$1
source=$2
work=$(mktemp -d /tmp/toolbase-install-XXXXXX)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

fail() { echo "FAIL: $*" >&2; exit 1; }
expect_contains() {  # TEXT WORD WHAT
  [[ $1 == *"$2"* ]] || fail "$3: expected '$2' in: $1"
}

cmake --install "$build" --prefix "$prefix" >/dev/null
# The installed tree must not lean on the build tree.
unset TOOLBASE_PLUGIN_PATH
export TOOLBASE_HOST_STATE=$work/host-state.json
toolbase=$prefix/bin/toolbase

for file in bin/toolbase include/toolbase/auto_cli.h include/hostctl/lib.h \
            share/bash-completion/completions/toolbase share/zsh/vendor-completions/_toolbase; do
  [[ -e $prefix/$file ]] || fail "not installed: $file"
done
# ldd's output is taken whole first: grep -q stops reading early, and under
# pipefail the writer's SIGPIPE would fail the check at random.
libraries=$(ldd "$toolbase")
[[ $libraries == *"libtoolbase.so => $prefix/"* ]] ||
  fail "toolbase does not find the installed libtoolbase: $libraries"

expect_contains "$("$toolbase" --version)" "toolbase " "--version"
out=$("$toolbase" network vswitch standard list)
expect_contains "$out" "vSwitch0" "installed network plug-in"
[[ -f $TOOLBASE_HOST_STATE ]] || fail "no fresh host state written"
out=$(printf '%s\n' "# from standard input" \
        "network vswitch standard add --vswitch-name vSwitch9" \
        "network vswitch standard list" | "$toolbase" --batch -)
expect_contains "$out" "vSwitch9" "batch from standard input"

export PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name toolbase.pc)")
plugindir=$(pkg-config --variable=plugindir toolbase)
[[ $(realpath "$plugindir") == "$(realpath "$prefix")"/* ]] ||
  fail "pkg-config plugindir outside the prefix: $plugindir"
# shellcheck disable=SC2046
g++ -std=c++20 -shared -fPIC -Wall -Wextra -Werror -fvisibility=hidden \
    "$source/tests/workflow/hello_plugin.cc" -o "$plugindir/libhello.so" \
    $(pkg-config --cflags --libs toolbase) -Wl,--no-undefined

[[ $("$toolbase" hello greet --name installer) == "Hello, installer!" ]] ||
  fail "third-party plug-in: $("$toolbase" hello greet --name installer 2>&1)"
help=$("$toolbase" --help)
expect_contains "$help" "libhello.so (hello)" "--help lists plug-ins"
expect_contains "$help" "libnetwork.so (network)" "--help lists plug-ins"
expect_contains "$("$toolbase" --complete -- hello "")" "greet" "completion of a new plug-in"

# The installed completion script completes from the installed toolbase.
out=$(PATH=$prefix/bin:$PATH bash -c "
  source '$prefix/share/bash-completion/completions/toolbase'
  COMP_WORDS=(toolbase network vswitch standard list --vswitch-name '')
  COMP_CWORD=6
  _toolbase
  echo \"\${COMPREPLY[*]}\"")
[[ $out == "vSwitch0 vSwitch1 vSwitch9" ]] || fail "installed completion: $out"
echo "install test passed"
