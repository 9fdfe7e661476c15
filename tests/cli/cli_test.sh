#!/usr/bin/env bash
# Runs the built program on files and standard input, and compares status and output.
# usage: cli_test.sh PROGRAM EXAMPLES_DIR
set -uo pipefail
program=$1 examples=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
count=0

# expect NAME STATUS STDOUT_FILE STDERR_PATTERN -- COMMAND...; "-" for output that is not looked at
expect() {
  local name=$1 status=$2 output=$3 pattern=$4
  shift 5
  "$@" >"$work/out" 2>"$work/err"
  local got=$?
  count=$((count + 1))
  local wrong=""
  [ "$got" -eq "$status" ] || wrong="status $got instead of $status"
  if [ "$output" != - ] && ! cmp -s "$output" "$work/out"; then
    wrong="$wrong; other output: $(diff "$output" "$work/out" | head -5)"
  fi
  if [ -n "$pattern" ]; then
    grep -qE -- "$pattern" "$work/err" || wrong="$wrong; standard error: $(cat "$work/err")"
  elif [ -s "$work/err" ]; then
    wrong="$wrong; unexpected on standard error: $(cat "$work/err")"
  fi
  if [ -n "$wrong" ]; then
    failures=$((failures + 1))
    echo "$name: $wrong"
  fi
}

: >"$work/nothing"
printf 'v=0\r\no=- 1 2 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\na=ptime:20\r\n' >"$work/body.sdp"
cat >"$work/body.tree" <<'TREE'
version 0
origin "-" session "1" version "2" IN IP4 "192.0.2.1"
name "-"
time 0 0
attribute 6 ptime 20
TREE
head='INVITE sip:bob@example.com SIP/2.0\r\nVia: SIP/2.0/UDP pc\r\n'

expect "decode of a file" 0 "$work/body.tree" "" -- "$program" decode "$work/body.sdp"
expect "decode of standard input" 0 "$work/body.tree" "" -- \
  sh -c '"$1" decode <"$2"' _ "$program" "$work/body.sdp"
expect "decode of - is standard input" 0 "$work/body.tree" "" -- \
  sh -c '"$1" decode - <"$2"' _ "$program" "$work/body.sdp"
expect "format writes the body back" 0 "$work/body.sdp" "" -- "$program" format "$work/body.sdp"

{ printf "$head"'Content-Type: application/sdp\r\nContent-Length: %d\r\n\r\n' "$(wc -c <"$work/body.sdp")"
  cat "$work/body.sdp"; printf 'not of the body'; } >"$work/message"
expect "a SIP request, cut at its length" 0 "$work/body.sdp" "" -- "$program" format "$work/message"
{ printf 'SIP/2.0 200 OK\r\nc: Application/SDP;charset=utf-8\r\n\r\n'; cat "$work/body.sdp"; } >"$work/answer"
expect "a SIP response, compact header" 0 "$work/body.sdp" "" -- "$program" format "$work/answer"
expect "the shipped example" 0 - "" -- "$program" decode "$examples/offer.sip"

printf "$head"'Content-Type: text/plain\r\n\r\nhello' >"$work/text"
expect "a message of another type" 1 "$work/nothing" "text: the SIP message carries no application/sdp body" -- \
  "$program" decode "$work/text"
printf "$head"'Content-Type: application/sdp\r\nContent-Length: 400\r\n\r\nv=0\r\n' >"$work/short"
expect "a message that ends too early" 1 "$work/nothing" "short: the SIP message ends before its Content-Length" -- \
  "$program" decode "$work/short"
printf "$head"'Content-Type: application/sdp\r\nContent-Length: 4x\r\n\r\nv=0\r\n' >"$work/length"
expect "a length that is no number" 1 "$work/nothing" "length: the SIP message's Content-Length is not a number" -- \
  "$program" decode "$work/length"

printf 'v=0\r\no=- 1 2 IN IP4 192.0.2.1\r\ns=-\r\nc=IN IP4 1.2.3.256\r\n' >"$work/refused.sdp"
expect "a refused body, decode" 1 "$work/nothing" \
  "refused.sdp:4:16: the fourth octet is above 255 \(sdpparser sdpConnectionFieldAddrIpv4, 0x05035065\)" -- \
  "$program" decode "$work/refused.sdp"
expect "a refused body, format" 1 "$work/nothing" "refused.sdp:4:16: the fourth octet" -- \
  "$program" format "$work/refused.sdp"
expect "an empty body" 1 "$work/nothing" "nothing: the text is null, empty or longer than 4093 bytes" -- \
  "$program" decode "$work/nothing"
expect "a file that is not there" 1 "$work/nothing" "none.sdp: No such file or directory" -- \
  "$program" decode "$work/none.sdp"
expect "a folder" 1 "$work/nothing" "Is a directory" -- "$program" decode "$work"
expect "output that cannot be written" 1 - "cannot write the output" -- \
  sh -c '"$1" decode "$2" >/dev/full' _ "$program" "$work/body.sdp"

expect "help" 0 - "" -- "$program" --help
expect "version" 0 - "" -- "$program" --version
"$program" decode >/dev/null 2>&1 --nonsense
[ $? -ne 0 ] || { failures=$((failures + 1)); echo "an unknown option is accepted"; }
"$program" >/dev/null 2>&1
[ $? -ne 0 ] || { failures=$((failures + 1)); echo "no subcommand is accepted"; }

echo "cli: $((count - failures)) passed, $failures failed"
[ "$failures" -eq 0 ]
