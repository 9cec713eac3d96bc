#!/bin/bash
# Writes what the command tree tells about itself into a folder: the list of
# commands, the help of `network` and of every namespace and leaf, one file
# each, with the exit status. Two builds compare with `diff -r`.
#   scripts/help_capture.sh build/toolbase /tmp/help-after
set -euo pipefail
toolbase=${1:?usage: help_capture.sh TOOLBASE FOLDER}
folder=${2:?usage: help_capture.sh TOOLBASE FOLDER}
mkdir -p "$folder"
capture() {  # name, then the arguments
  local name=$1 status=0
  shift
  "$toolbase" "$@" > "$folder/$name.out" 2> "$folder/$name.err" || status=$?
  echo "$status" > "$folder/$name.status"
}
capture list-commands --list-commands
"$toolbase" --list-commands | while read -r -a words; do
  # every prefix of the path, so the namespaces' help is kept too
  for ((n = 1; n <= ${#words[@]}; n++)); do
    name=$(IFS=_; echo "${words[*]:0:n}")
    [[ -e "$folder/$name.status" ]] || capture "$name" "${words[@]:0:n}" --help
  done
done
