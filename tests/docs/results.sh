#!/usr/bin/env bash
# Compares docs/results.md with the output of the program that prints the table of results.
# usage: results.sh RESULTS_TABLE RESULTS_MD
set -euo pipefail
table=$1 document=$2
if ! diff -u --label docs/results.md --label 'the table' "$document" <("$table"); then
  echo "results: write the document anew: $table >$document" >&2
  exit 1
fi
echo "results: the document is the table"
