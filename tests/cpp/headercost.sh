#!/usr/bin/env bash
# What it costs a source to include sdpline.hpp: user time, which is for people to look at, and the
# memory that g++ takes for it, which comes out the same on a busy machine and must not grow.
# usage: headercost.sh SOURCE_DIR C++_COMPILER
set -euo pipefail
limit=115 # MB; the standard headers that it includes take about 50
[[ $("$2" --version) == *"Free Software Foundation"* ]] || exit 77 # by g++ only

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
echo '#include <sdpline/sdpline.hpp>' >"$scratch/header.cpp"
compile=("$2" -std=c++20 -fsyntax-only -I "$1/include" "$scratch/header.cpp")

# TOTAL: user, system and wall time, memory.
total=$("${compile[@]}" -ftime-report 2>&1 | grep '^ TOTAL ')
time=$(sed 's/^ TOTAL *: *\([0-9.]*\) .*/\1/' <<<"$total")
memory=$(sed 's/.* \([0-9]*\)M$/\1/' <<<"$total")
echo "sdpline.hpp: $time s of user time, $memory MB"
if [ -z "$memory" ] || [ "$memory" -gt "$limit" ]; then
  echo "headercost: more than $limit MB" >&2
  exit 1
fi
