#!/usr/bin/env bash
# libtoolbase.so and liborvkctl.so bind their own functions, tables of virtual
# operations and type information when linked: of the symbols a library
# defines, its relocations name only the data objects of its dynamic list
# (generated/<library>.dynamic), which a program may copy, so that the dynamic
# linker looks up none of the others at every start.
#   binding_test.sh BUILD_DIR
set -euo pipefail
export LC_ALL=C
build=$1
fail() { echo "FAIL: $*" >&2; exit 1; }

for library in toolbase orvkctl; do
  file=$build/lib$library.so
  list=$build/generated/$library.dynamic
  [[ -s $list ]] || fail "no dynamic list $list"
  defined=$(nm -D --defined-only "$file" | awk 'NF == 3 { sub(/@.*/, "", $3); print $3 }' | sort -u)
  named=$(readelf -rW "$file" | awk '$3 ~ /^R_X86_64_(64|GLOB_DAT|JUMP_SLOT)$/ { sub(/@.*/, "", $5); print $5 }' |
    sort -u)
  allowed=$(sed -n 's/^  \([^ ;]*\);$/\1/p' "$list" | sort -u)
  own=$(comm -12 <(echo "$defined") <(echo "$named"))
  unexpected=$(comm -23 <(echo "$own") <(echo "$allowed"))
  [[ -z $unexpected ]] || fail "lib$library.so looks up its own symbols at load: $unexpected"
done
