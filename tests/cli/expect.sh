# Functions that the tests of the program share. Each test runs in a temporary folder.
# Sourced by the scripts in this folder, which are called with PROGRAM and SOURCE_DIR.
set -uo pipefail
program=$1 source=$2
export LC_ALL=C.UTF-8
unset NO_COLOR
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 2
failures=0
count=0
: >nothing

# expect NAME STATUS STDOUT STDERR -- COMMAND...
# STDOUT and STDERR are the files with the expected output; "-" accepts any output, and "~PATTERN"
# is an extended regular expression that the output must match.
expect() {
  local name=$1 status=$2 output=$3 error=$4
  shift 5
  "$@" >.out 2>.err
  local got=$?
  count=$((count + 1))
  local wrong=""
  [ "$got" -eq "$status" ] || wrong="status $got instead of $status"
  compare "standard output" "$output" .out
  compare "standard error" "$error" .err
  if [ -n "$wrong" ]; then
    failures=$((failures + 1))
    echo "$name: $wrong"
  fi
}

# Adds a line to `wrong` of expect() when the output differs. Starts a process only where it must:
# it is called more than a thousand times.
compare() { # WHAT EXPECTED GOT
  case $2 in
  -) ;;
  nothing) [ ! -s "$3" ] || wrong+=$'\n'"  $1 is not empty: $(cat "$3")" ;;
  '~'*) grep -qE -- "${2#\~}" "$3" || wrong+=$'\n'"  $1 lacks \"${2#\~}\": $(cat "$3")" ;;
  *) cmp -s "$2" "$3" || wrong+=$'\n'"  $1 differs: $(diff "$2" "$3" | head -20)" ;;
  esac
}

# file NAME: writes standard input to a file, with CR LF as line ends.
file() { sed 's/$/\r/' >"$1"; }

# session FILE ORIGIN ADDRESS: writes the lines of a session, then those of standard input.
session() {
  { printf 'v=0\no=- %s\ns=-\nc=IN IP4 %s\nt=0 0\n' "$2" "$3" && cat; } | file "$1"
}

# message FILE BODY [HEADER...]: writes a SIP request with the body and its Content-Length.
message() {
  local file=$1 body=$2
  shift 2
  {
    printf 'INVITE sip:bob@example.com SIP/2.0\r\nVia: SIP/2.0/UDP pc.example.com\r\n'
    [ $# -eq 0 ] || printf '%s\r\n' "$@"
    [ $# -gt 0 ] || printf 'Content-Type: application/sdp\r\n'
    printf 'Content-Length: %d\r\n\r\n' "$(wc -c <"$body")"
    cat "$body"
  } >"$file"
}

# badOctet FILE LINE: the output of check for the c= line of bad.sdp at that line.
badOctet() {
  printf '%s:%d:16: error: expected an octet of at most 255; found "256" [ConnLastOctetRange]\n' "$1" "$2"
  printf '%5d | c=IN IP4 1.2.3.256\n      |                ^\n' "$2"
}

finish() {
  echo "$(basename "$0"): $((count - failures)) passed, $failures failed"
  [ "$failures" -eq 0 ]
}

# Two bodies that most tests use.
file good.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
t=0 0
a=ptime:20
SDP
cat >good.tree <<'TREE'
version 0
origin "-" session "1" version "2" IN IP4 "192.0.2.1"
name "-"
time 0 0
attribute 6 ptime 20
TREE
file bad.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
c=IN IP4 1.2.3.256
SDP
