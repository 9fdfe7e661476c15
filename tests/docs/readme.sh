#!/usr/bin/env bash
# Checks that the README is short, and that its commands and programs print the output in it.
# usage: readme.sh SOURCE_DIR TREE CC CXX, with TREE as in commands.sh
set -euo pipefail
source=$1
lines=$(wc -l <"$source/README.md")
[ "$lines" -lt 150 ] || { echo "README.md has $lines lines" >&2; exit 1; }
outputs=$(grep -c '^```text$' "$source/README.md")
said=$("$source/tests/docs/commands.sh" "$@" "$source/README.md")
case $said in
"commands: $outputs blocks "*) echo "readme: what is printed there is what its commands print" ;;
*) echo "README.md shows $outputs outputs; $said" >&2; exit 1 ;;
esac
