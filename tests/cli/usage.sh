#!/usr/bin/env bash
# The whole program: wrong command lines, output that cannot be written, and readers that close the
# pipe.
. "$(dirname "$0")/expect.sh"

# wrong MESSAGE COMMAND-LINE...: the error begins with the command's name and refers to the help.
wrong() {
  local message=$1 name=sdpline
  shift
  case ${1-} in check | diff | explain | answer | tidy) name="sdpline $1" ;; esac
  printf '%s: %s\nRun "%s --help" for more information.\n' "$name" "$message" "$name" >told
  expect "${*-nothing}" 2 nothing told -- "$program" "$@"
}
wrong "A subcommand is required"
wrong 'no subcommand is named "chekc"; did you mean check?' chekc good.sdp
wrong 'no subcommand is named "good.sdp"' good.sdp
wrong 'no subcommand is named "\x1b[2J"' $'\033[2J'
wrong 'unexpected argument "--verison"; did you mean --version?' --verison
wrong 'unexpected argument "--redct"; did you mean --redact?' check --redct good.sdp
wrong 'unexpected argument "--formt=gcc"; did you mean --format?' check --formt=gcc good.sdp
wrong 'unexpected argument "--bogus"' check --bogus
wrong 'unexpected argument "-z"' check -z
wrong 'unexpected argument "c.sdp"' diff good.sdp bad.sdp c.sdp
wrong "B is required" diff good.sdp
wrong "CODE is required" explain
wrong "--with is required" answer good.sdp
wrong "--max-body: Value 0 not in range 1 to 65535" tidy --max-body 0 good.sdp
wrong "--format: 1 required FORMAT missing" check --format
wrong '--format: \x1b not in {text,json,jsonl,gcc,junit,sarif}' check --format $'\033'
"$program" check --format gcc bad.sdp >known
expect "the last of several counts" 1 known nothing -- "$program" check --format json --format gcc bad.sdp
expect "an option after --" 2 - '~^sdpline: --redact: No such file' -- "$program" check -- --redact

# ---- Every name that other commands print has an explanation
cat >known <<'TEXT'
PortRange: a port above 65535: it is kept modulo 2^32; others cut it to 16 bits
  rule      RFC 4566 5.14
  made by   check, as a warning
TEXT
expect "a doubt" 0 known nothing -- "$program" explain '[PortRange]'
expect "a repair" 0 '~^  made by   tidy, as a repair$' nothing -- "$program" explain nameempty
expect "a line of no kind" 0 '~^LineKind: no line of SDP begins like this$' nothing -- \
  "$program" explain LineKind
"$program" rules --json | sed -n 's/^ *"name": "\(.*\)",/\1/p' >names
expect "every rule" 0 names nothing -- sh -c 'xargs "$1" explain <names | sed -n "s/^\([A-Z][A-Za-z0-9]*\): .*/\1/p"' _ "$program"

# ---- tidy of folders and of texts with more than one body
mkdir folder && cp good.sdp folder/a.sdp && printf 'v=0\no=- 1 2 IN IP4 x\ns=\nt=0 0\n' >folder/b.sdp
cp -r folder copy
expect "tidy -i of a folder" 1 nothing '~^folder/b.sdp:3:[0-9]+: repaired: ' -- \
  "$program" tidy -i folder
expect "its file is repaired" 0 '~1 body|2 bodies in 2 files: none refused' nothing -- \
  "$program" check folder
expect "the good one is untouched" 0 good.sdp nothing -- cat folder/a.sdp
{ cat good.sdp; echo; echo "not read"; } >noted
echo "sdpline: noted:$(($(wc -l <good.sdp) + 2)): what follows an empty line in a body is not read" >told
expect "a note is no failure" 0 noted told -- "$program" tidy noted
expect "nothing is written in place of standard input" 2 nothing '~--in-place cannot be used with standard input or --redact' -- \
  "$program" tidy -i good.sdp -

# ---- Output that cannot be written, and readers that close the pipe
for i in $(seq 400); do cat bad.sdp; printf '\r\n'; done >many.sdp
# A name in brackets is the name of one file, not a list of two.
cp good.sdp '[x]' && cp good.sdp '[a,b]'
echo 'checked 3 bodies in 3 files: none refused' >summary
for command in check "check -j 2"; do
  # shellcheck disable=SC2086 # options are words
  expect "names in brackets, $command" 0 summary nothing -- \
    "$program" $command '[x]' '[a,b]' good.sdp
done
expect "decode, a name in brackets" 0 good.tree nothing -- "$program" decode '[x]'
expect "a name in brackets that is none" 2 - '~^sdpline: \[no,ne\]: No such file or directory$' -- \
  "$program" check '[no,ne]'

commands=("--help" "check --help" "--version" "explain --list" "profiles" "rules" "rules --json"
  "decode good.sdp" "decode --json good.sdp" "format good.sdp" "diff good.sdp folder/b.sdp"
  "tidy good.sdp" "tidy --json good.sdp" "answer --with answer.sdp answer.sdp"
  "check good.sdp" "check --summary many.sdp" "check --format json many.sdp"
  "check --format jsonl many.sdp" "check --format gcc many.sdp" "check --format junit many.sdp"
  "check --format sarif many.sdp")
sed 's/^a=.*/m=audio 5004 RTP\/AVP 0\r/' good.sdp >answer.sdp
if [ -e /dev/full ]; then
  for command in "${commands[@]}"; do
    expect "a full disk, $command" 2 nothing '~^sdpline: cannot write the output$' -- \
      sh -c '"$0" "$@" >/dev/full' "$program" $command
  done
fi
for command in "explain --list" "check many.sdp" "check --format json many.sdp" \
  "check --format jsonl many.sdp" "check --format junit many.sdp" "check --format sarif many.sdp"; do
  # The reader takes one byte: SIGPIPE ends the program, unless it has already written everything.
  # shellcheck disable=SC2086 # options are words
  expect "a closed pipe, $command" 0 - nothing -- \
    bash -c '"$0" "$@" 2>told | head -c 1 >/dev/null; status=${PIPESTATUS[0]}
      [ -s told ] && cat told; [ $status -eq 141 ] || [ $status -le 1 ]' "$program" $command
done
finish
