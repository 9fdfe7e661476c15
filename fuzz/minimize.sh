#!/usr/bin/env bash
# Updates fuzz/corpus from itself and from the inputs found by the runs of a build. Keeps for each
# target a minimal set of inputs that reach code that the cases do not reach: minimize.sh BUILD
set -euo pipefail
sources=$(dirname "$(realpath "$0")")
build=$(realpath "$1")/fuzz

rm -rf "$build/seeds"
"$build/fuzz_seeds" "$sources/sdp.dict" "$build/seeds"
for corpus in "$sources"/corpus/*/; do
  target=$(basename "$corpus")
  merged=$build/merged/$target
  rm -rf "$merged"
  mkdir -p "$merged" "$build/found/$target"
  cp "$build/seeds/$target"/* "$merged"
  "$build/fuzz_$target" -set_cover_merge=1 -use_counters=0 -max_len=4200 \
    "$merged" "$corpus" "$build/found/$target" 2>"$build/merged/$target.log"
  # Inputs that were merged are named by their SHA-1, seeds are not.
  find "$corpus" -type f -delete
  find "$merged" -type f -regextype egrep -regex '.*/[0-9a-f]{40}' -exec cp -t "$corpus" {} +
  printf '%-10s %4d files %7d bytes\n' "$target" "$(find "$corpus" -type f | wc -l)" \
    "$(find "$corpus" -type f -printf '%s\n' | awk '{ sum += $1 } END { print sum + 0 }')"
done
