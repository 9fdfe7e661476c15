#!/usr/bin/env bash
# The program's work is linear in the size of its files: files.sh PROGRAM [MAKECAPTURE]. Each kind
# of hostile file is made in two sizes, one four times the other; the test fails if the larger one
# needs more than six times the instructions.
set -euo pipefail
export LC_ALL=C
program=$1 makecapture=${2:-}
small=10000 # bytes
most=6
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# repeat BYTES TEXT: repeats the text, with the escapes of printf.
repeat() {
  local text
  printf -v text -- "$2"
  while [ "${#text}" -lt "$1" ]; do text+=$text; done
  printf '%s' "${text:0:$1}"
}

start='INVITE sip:b SIP/2.0\r\nc: application/sdp\r\n'
sdp='v=0\r\no=- 1 1 IN IP4 x\r\ns=-\r\n'
multipart='INVITE sip:b SIP/2.0\r\nc: multipart/mixed;boundary=b\r\n\r\n'

# One line for each kind: NAME|OPTIONS|BEFORE|REPEATED|AFTER. The default subcommand is check.
kinds() {
  cat <<KINDS
messages|check||$start\r\n$sdp|
lengths beyond the end|check||${start}l: 99999999\r\n\r\n$sdp|
lengths beyond the end, LF alone|check||INVITE sip:b SIP/2.0\nc: application/sdp\nl: 9999999\n\nv=0\n|
lengths into other messages|check||${start}l: 5001\r\n\r\n$sdp|
lengths into other messages, LF alone|check||INVITE sip:b SIP/2.0\nc: application/sdp\nl: 5001\n\nv=0\n|
lengths that cut|check||${start}l: 3\r\n\r\n$sdp|
lengths of nothing|check||${start}l: x\r\n\r\n$sdp|
lengths to blanks|check||${start}l: 4001\r\n\r\n|   \r\n
first lines|check||INVITE sip:b SIP/2.0\r\n|
headers|check|INVITE sip:b SIP/2.0\r\n|a: b\r\n|
a folded header|check|INVITE sip:b SIP/2.0\r\nc: application/sdp|\r\n ;a=b|\r\n\r\n
a header of parameters|check|INVITE sip:b SIP/2.0\r\nc: multipart/mixed|;a="b|"\r\n\r\n
parts|check|$multipart|--b\r\nc: application/sdp\r\n\r\n$sdp|--b--
parts without an end|check|$multipart|--b\r\n|
parts in parts|check|$multipart|--b\r\nc: multipart/mixed;boundary=b\r\n\r\n|
parts that are no parts|check|$multipart|--bc\r\n|
one long line|check||x|
blanks|check||\r\n|
blanks after a body|check|$sdp| \r\n|x
bodies|check||$sdp\r\n|
bodies with text between|check||$sdp\r\nx\r\n|
spaces in a first line|check|INVITE |sip:b |SIP/2.0\r\n
bodies, decoded|decode||$sdp\r\n|
messages, formatted|format||$start\r\n$sdp|
messages, as JSON|check --json||$start\r\n$sdp|
lines of no kind|check --every-line|v=0\r\n|f=\r\n|
KINDS
}

# instructions BYTES BEFORE REPEATED AFTER OPTIONS...: the instructions of the program on such a
# file.
instructions() {
  local size=$1 before=$2 repeated=$3 after=$4
  shift 4
  { printf -- "$before"; repeat "$size" "$repeated"; printf -- "$after"; } >file
  count_instructions "$@"
}

# count_instructions OPTIONS...: the instructions of the program on the file.
count_instructions() {
  { valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$@" file 2>&1 >/dev/null ||
    [ $? -le 2 ]; } | awk '/Collected : / { print $NF }'
}

failed=0 count=0
judge() { # NAME ONE FOUR
  count=$((count + 1))
  awk -v name="$1" -v nothing="$nothing" -v one="$2" -v four="$3" -v most="$most" 'BEGIN {
    ratio = (four - nothing) / (one - nothing > 100000 ? one - nothing : 100000)
    printf "%12d %12d %5.1f  %s%s\n", one, four, ratio, name, (ratio > most ? ": TOO MUCH" : "")
    exit ratio > most
  }' || failed=$((failed + 1))
}
nothing=$(: >file && instructions 0 "" "x" "" check) # starting the program
while IFS='|' read -r name options before repeated after; do
  read -ra words <<<"$options"
  one=$(instructions "$small" "$before" "$repeated" "$after" "${words[@]}")
  four=$(instructions $((4 * small)) "$before" "$repeated" "$after" "${words[@]}")
  judge "$name" "$one" "$four"
done < <(kinds)
# Captures, 100 kB and 400 kB.
for scene in ${makecapture:+gaps dribble seeking fragments streams frames bulk}; do
  for times in 1 4; do
    if [ "$scene" = bulk ]; then # in megabytes: its beginning
      "$makecapture" bulk 1 >whole
      head -c $((times * 100000)) whole >file
    else
      "$makecapture" "$scene" $((times * 100)) >file
    fi
    [ $times = 4 ] || one=$(count_instructions check)
  done
  four=$(count_instructions check)
  judge "a capture of $scene" "$one" "$four"
done
[ "$count" -gt 20 ] || { echo "too little was measured"; exit 1; }
echo "$count kinds of files, $failed of them cost more than $most times for four times the size"
[ "$failed" -eq 0 ]
