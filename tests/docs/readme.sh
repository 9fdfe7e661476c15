#!/usr/bin/env bash
# Builds the README's program as the README says and compares what it prints with what the README
# prints.
# usage: readme.sh SOURCE_DIR BUILD_DIR CC
set -euo pipefail
source=$1 build=$2 cc=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The first fenced block of a kind.
block() { awk -v kind="\`\`\`$1" '$0 == kind { on = 1; next } /^```/ { if (on) exit } on' "$source/README.md"; }

block c >"$work/program.c"
block text >"$work/expected"
test -s "$work/program.c" -a -s "$work/expected"
cd "$work"
"$cc" -std=c11 -Wall -Wextra -Werror -I"$source/include" program.c -L"$build/src" -L"$build/src/sipcore" \
  -lsdpline -lsipcore -Wl,-rpath,"$build/src:$build/src/sipcore" -o program
./program | diff expected -
lines=$(wc -l <"$source/README.md")
[ "$lines" -lt 150 ] || { echo "README.md has $lines lines" >&2; exit 1; }
echo "readme: the program prints what is printed there"
