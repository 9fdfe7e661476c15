#!/usr/bin/env bash
# No body of the maximum length needs more than 40 times the instructions of a typical offer of that
# length: cost.sh PROGRAM
set -euo pipefail
program=$1
most=40
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Valgrind counts every byte of a repeated string instruction: let the C library use its loops.
threshold=1073741824
export GLIBC_TUNABLES=glibc.cpu.x86_rep_movsb_threshold=$threshold
GLIBC_TUNABLES+=:glibc.cpu.x86_rep_stosb_threshold=$threshold

valgrind --tool=callgrind --callgrind-out-file="$folder/out" "$program" 2>"$folder/log" ||
  { cat "$folder/log"; exit 1; }

# A dump holds "desc: Trigger: Client Request: NAME" and "summary: INSTRUCTIONS".
awk -v most="$most" '
  sub(/^desc: Trigger: Client Request: /, "") { name = $0 }
  /^summary: / && name != "" { count[name] = $2; order[++n] = name; name = "" }
  END {
    typical = count["typical"]
    if (typical < 10000 || n < 100) { print "too little was measured"; exit 1 }
    printf "%12d  a typical offer\n", typical
    for (i = 1; i <= n; ++i) {
      name = order[i]
      if (name == "first" || name == "typical") continue
      ratio = count[name] / typical
      if (ratio > worst) { worst = ratio; worstName = name }
      printf "%12d %6.1f  %s\n", count[name], ratio, name
      if (ratio > most) { printf "TOO MUCH: %s\n", name; bad = 1 }
    }
    printf "the worst is %.1f times a typical offer: %s\n", worst, worstName
    exit bad
  }' "$folder"/out.*
