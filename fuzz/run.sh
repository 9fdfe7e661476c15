#!/usr/bin/env bash
# Runs each fuzz target of a build for a given time: run.sh BUILD TARGET|all SECONDS
#
# They start from the corpus, the cases, and the inputs found by earlier runs, which are kept in
# BUILD/fuzz/found. Inputs that break a property are kept in BUILD/fuzz/findings, with the log.
# They are printed too, in base64, because a machine of CI is gone after its run.
set -euo pipefail
sources=$(dirname "$(realpath "$0")")
build=$(realpath "$1")/fuzz
seconds=$3

if [ "$2" = all ]; then
  "$build/fuzz_seeds" "$sources/sdp.dict" "$build/seeds"
  find "$sources/corpus" -mindepth 1 -maxdepth 1 -type d -printf '%f\n' | sort |
    xargs -P "$(nproc)" -I{} "$0" "$1" {} "$seconds"
  exit
fi

target=$2
program=$build/fuzz_$target
[ -x "$program" ] || { echo "no fuzz target $target" >&2; exit 2; }
[ -d "$build/seeds/$target" ] || "$build/fuzz_seeds" "$sources/sdp.dict" "$build/seeds"
mkdir -p "$build/found/$target" "$build/findings"
log=$build/findings/$target.log
if ! "$program" -max_total_time="$seconds" -max_len=4200 -timeout=10 -rss_limit_mb=3000 \
  -dict="$build/seeds/sdp.dict" -artifact_prefix="$build/findings/$target-" \
  "$build/found/$target" "$sources/corpus/$target" "$build/seeds/$target" >"$log" 2>&1; then
  { echo "$target: FINDING, all of it in $log"
    grep -E -A1 '^(FINDING|SUMMARY|==.*ERROR|Test unit|.*runtime error)|Test unit written' "$log" || tail -n 5 "$log"
    sed -n 's/.*Test unit written to //p' "$log" | xargs -r base64; } >&2
  exit 1
fi
# "#551816  DONE   cov: 1997 ft: 9191 ..."
awk -v target="$target" '
  $2 == "DONE" { printf "%-10s %9d executions %6d edges\n", target, substr($1, 2), $4; done = 1 }
  END { exit !done }' "$log"
