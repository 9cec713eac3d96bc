#!/usr/bin/env bash
# Renders the manual pages the build generated with man, without warnings,
# and checks that toolbase(1) has its sections and options and that the
# network page has every command with its parameters.
#   man_test.sh BUILD_DIR
set -euo pipefail
build=$1
fail() { echo "FAIL: $*" >&2; exit 1; }
command -v man >/dev/null || fail "man is not installed (package man-db)"
unset TOOLBASE_PLUGIN_PATH
render() {  # PAGE: the page as plain text, wide enough that nothing wraps
  LC_ALL=C MANWIDTH=250 man --warnings -l "$build/man/$1.1" 2>"$build/man/$1.warnings"
}
contains() {  # TEXT WORD WHAT
  [[ $1 == *"$2"* ]] || fail "$3: '$2' missing"
}

toolbase=$(render toolbase)
[[ ! -s $build/man/toolbase.warnings ]] || fail "toolbase.1: $(cat "$build/man/toolbase.warnings")"
for section in NAME SYNOPSIS DESCRIPTION OPTIONS BATCHES "EXIT STATUS" ENVIRONMENT FILES \
               EXAMPLES "SEE ALSO"; do
  contains "$toolbase" "
$section
" "toolbase(1) section"
done
for word in --formatter=name --dry-run --batch=file --batch-continue --list-commands \
            --host-state=path TOOLBASE_PLUGIN_PATH COLUMNS toolbase-network "applied"; do
  contains "$toolbase" "$word" "toolbase(1)"
done

network=$(render toolbase-network)
[[ ! -s $build/man/toolbase-network.warnings ]] ||
  fail "toolbase-network.1: $(cat "$build/man/toolbase-network.warnings")"
count=0
while read -r path; do
  contains "$network" "   toolbase $path
" "toolbase-network(1) command"
  count=$((count + 1))
done < <("$build/toolbase" --list-commands network)
((count > 100)) || fail "only $count commands listed"
contains "$network" "-n, --nic-name=str (required)" "toolbase-network(1) parameter"
contains "$network" "Acceptable values are :10, 100, 1000" "toolbase-network(1) value list"
echo "manual pages passed ($count commands)"
