#!/usr/bin/env bash
# Checks the links of the documents: each relative link leads to a file and, after "#", to one of its
# headings; and every document can be reached from the README by at most two links.
# usage: links.sh SOURCE_DIR
set -euo pipefail
cd "$1"

documents=(README.md CHANGELOG.md SECURITY.md docs/*.md docs/man/sdpline.1)
awk '
  function slug(heading) {
    heading = tolower(heading)
    gsub(/[^a-z0-9_ -]/, "", heading)
    gsub(/ /, "-", heading)
    return heading
  }
  function resolved(from, target,   folder) {
    folder = from ~ /\// ? substr(from, 1, match(from, /[^\/]*$/) - 1) : ""
    target = folder target
    while (sub(/[^\/]+\/\.\.\//, "", target)) { }
    return target
  }
  function wrong(message) { print message; failed = 1 }

  FNR == 1 { fenced = 0 }
  /^ *```/ { fenced = !fenced; next }
  fenced { next }
  /^#+ / { heading = $0; sub(/^#+ /, "", heading); headings[FILENAME "#" slug(heading)] }
  {
    for (rest = $0; match(rest, /\]\([^)]*\)/); rest = substr(rest, RSTART + RLENGTH)) {
      target = substr(rest, RSTART + 2, RLENGTH - 3)
      if (target !~ /^[a-z]+:/) from[FILENAME ":" FNR ": " target] = FILENAME
    }
  }
  END {
    for (link in from) {
      target = link
      sub(/^[^ ]* /, "", target)
      anchor = target ~ /#/ ? substr(target, index(target, "#") + 1) : ""
      sub(/#.*/, "", target)
      file = target == "" ? from[link] : resolved(from[link], target)
      if (system("test -e \"" file "\"") != 0) { wrong(link " does not exist"); continue }
      if (anchor != "" && !(file "#" anchor in headings)) wrong(link " is no heading")
      leads[from[link], file]
    }
    reached["README.md"]
    for (step = 1; step <= 2; ++step) {
      split("", next_ones)
      for (pair in leads) {
        split(pair, ends, SUBSEP)
        if (ends[1] in reached) next_ones[ends[2]]
      }
      for (file in next_ones) reached[file]
    }
    for (i = 1; i < ARGC; ++i)
      if (!(ARGV[i] in reached)) wrong(ARGV[i] " is more than two links from the README")
    exit failed
  }' "${documents[@]}"
