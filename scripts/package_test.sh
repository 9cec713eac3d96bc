#!/usr/bin/env bash
# Builds the Debian packages from a build folder, checks them with lintian,
# installs them with dpkg, runs an installed command and builds a plug-in
# against the installed development files, then purges them and checks that
# nothing of them is left on the machine.
#   package_test.sh BUILD_DIR SOURCE_DIR
# Needs root (dpkg -i); refuses to run when a toolbase package is already
# installed, so that it never replaces or removes one it did not install.
set -euo pipefail
build=$(realpath "$1")
source=$(realpath "$2")

fail() { echo "FAIL: $*" >&2; exit 1; }
[ "$(id -u)" -eq 0 ] || { echo "package test skipped: needs root for dpkg -i"; exit 0; }
for package in toolbase toolbase-dev; do
  if dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q installed; then
    fail "$package is installed already; remove it before running this test"
  fi
done

work=$(mktemp -d /tmp/toolbase-package-XXXXXX)
installed=0
cleanup() {
  if [ "$installed" -eq 1 ]; then dpkg --purge toolbase-dev toolbase >/dev/null 2>&1 || true; fi
  rm -rf "$work"
}
trap cleanup EXIT

(cd "$build" && cpack -G DEB -B "$work/out" >/dev/null) || fail "cpack"
runtime=$(ls "$work"/out/toolbase_*.deb)
dev=$(ls "$work"/out/toolbase-dev_*.deb)
ls "$work"/out/toolbase-dbgsym_*.ddeb >/dev/null || fail "no debug symbol package"

# lintian: no error and no warning. The tags below are justified in the
# README's "Debian package" section.
accepted=$({ grep -v '^#' "$source/scripts/lintian-accepted" || true; } | tr -s '\n' ',' | sed 's/^,//; s/,$//')
lintian --allow-root --fail-on error,warning ${accepted:+--suppress-tags "$accepted"} \
  "$runtime" "$dev" || fail "lintian"

# Stripped: no section of debugging information in any installed object.
mkdir "$work/unpacked"
dpkg-deb -x "$runtime" "$work/unpacked"
while IFS= read -r object; do
  if readelf -S "$object" | grep -q '\.debug_info'; then fail "not stripped: $object"; fi
done < <(find "$work/unpacked" -type f \( -name '*.so' -o -path '*/bin/*' \))

before=$(mktemp "$work/before-XXXXXX")
after=$(mktemp "$work/after-XXXXXX")
list_system() { find /usr /etc -xdev 2>/dev/null | LC_ALL=C sort; }
list_system >"$before"

installed=1
dpkg -i "$runtime" "$dev" >/dev/null || fail "dpkg -i"
export HOME=$work/home
mkdir -m 700 "$HOME"
out=$(/usr/bin/toolbase network vswitch standard list) || fail "installed toolbase: $out"
[[ $out == *vSwitch0* ]] || fail "installed toolbase printed: $out"
man -l "$(dpkg -L toolbase | grep -m1 '/man1/toolbase\.1\.gz$')" >/dev/null 2>&1 ||
  fail "the manual page toolbase(1) is not installed or does not render"

# A plug-in built from the installed headers and pkg-config files alone.
plugindir=$(pkg-config --variable=plugindir toolbase)
[[ $plugindir == /usr/lib/* ]] || fail "pkg-config plugindir: $plugindir"
# shellcheck disable=SC2046
g++ -std=c++20 -shared -fPIC -Wall -Wextra -Werror -fvisibility=hidden \
    "$source/tests/workflow/hello_plugin.cc" -o "$work/libhello.so" \
    $(pkg-config --cflags --libs toolbase orvkctl) -Wl,--no-undefined || fail "plug-in against -dev"

dpkg --purge toolbase-dev toolbase >/dev/null || fail "dpkg --purge"
installed=0
list_system >"$after"
left=$(comm -13 "$before" "$after")
[ -z "$left" ] || fail "left behind after purge: $left"
echo "package test passed: $(basename "$runtime") $(basename "$dev")"
