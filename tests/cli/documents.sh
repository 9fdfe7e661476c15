#!/usr/bin/env bash
# The man page and the bash completion have exactly the subcommands and options of the program.
. "$(dirname "$0")/expect.sh"
page=$source/docs/man/sdpline.1
completion=$source/completion/sdpline

# subcommands; options SUBCOMMAND: those in the help of the program, one a line, sorted.
subcommands() { "$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p' | sort; }
options() { "$program" "$@" --help | sed -n '/^Options:/,/^$/p' | grep -oE -- '^  .{0,3}--[a-z0-9-]+' |
  grep -oE -- '--.*' | sort; }

subcommands >subcommands.txt
[ "$(wc -l <subcommands.txt)" -ge 9 ] || { failures=$((failures + 1)); echo "not nine subcommands"; }

# ---- Man page
sed -n 's/^\.SS //p' "$page" | sort >got
expect "the page's subcommands" 0 subcommands.txt nothing -- cat got
sed -n 's/\\-/-/g; s/^\.B sdpline //p' "$page" | sort >got
expect "the synopsis' subcommands" 0 subcommands.txt nothing -- cat got
while read -r subcommand; do
  options "$subcommand" | grep -v '^--help$' >known
  sed 's/\\-/-/g' "$page" |
    awk -v name="$subcommand" '/^\.S[SH]/ { on = ($2 == name) } on && before == ".TP" { print } { before = $0 }' |
    grep -oE -- '--[a-z0-9-]+' | sort >got
  expect "the page's options of $subcommand" 0 known nothing -- cat got
  sed 's/\\-/-/g' "$page" |
    awk -v name="$subcommand" '/^\.SH/ { on = 0 } /^\.B sdpline/ { on = ($3 == name) } on' |
    grep -oE -- '--[a-z0-9-]+' | sort >got
  expect "the synopsis of $subcommand" 0 known nothing -- cat got
done <subcommands.txt
if command -v groff >/dev/null; then
  groff -man -Tutf8 -ww -z "$page" >got 2>&1
  expect "the page's markup" 0 nothing nothing -- cat got
fi

# The example that puts a stream on hold works.
if command -v jq >/dev/null; then
  mkdir bin && ln -s "$program" bin/sdpline
  sed 's/a=sendrecv/a=ptime:30/' >offer.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
t=0 0
m=audio 5004 RTP/AVP 0
a=sendrecv
SDP
  awk '/on hold/ { on = 1 } on && /^\.fi/ { exit } text { print } on && /^\.nf/ { text = 1 }' "$page" |
    sed 's/\\-/-/g' >hold
  echo 'media 1 audio: direction sendrecv -> sendonly' >known
  for body in offer.sdp "$source/examples/offer.sip"; do
    [ "$body" = offer.sdp ] || cp "$body" offer.sdp
    PATH=$PWD/bin:$PATH sh hold >held.sdp
    expect "the page puts $body on hold" 1 known nothing -- "$program" diff offer.sdp held.sdp
  done
fi

# ---- Completion
# completed WORD...: the words that are offered for the last word, sorted.
completed() {
  bash -c '. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _sdpline
    printf "%s\n" "${COMPREPLY[@]}"' _ "$completion" "$@" | sort
}
{ cat subcommands.txt; options; } | sort >known
expect "completion of the first word" 0 known nothing -- completed sdpline ""
while read -r subcommand; do
  options "$subcommand" >known
  expect "completion of the options of $subcommand" 0 known nothing -- \
    completed sdpline "$subcommand" -
done <subcommands.txt
printf '%s\n' cr crlf >known
expect "completion of a line end" 0 known nothing -- completed sdpline format --line-end c
printf '%s\n' 0 1 2 >known
expect "completion of a style" 0 known nothing -- completed sdpline encode --t38 ""
mkdir files && touch "files/a b.sdp" files/c.sdp
printf '%s\n' "files/a b.sdp" files/c.sdp >known
expect "completion of files" 0 known nothing -- completed sdpline check --json files/
echo >known
expect "no files for explain" 0 known nothing -- completed sdpline explain ""
expect "it can be loaded" 0 - nothing -- bash -c '. "$1" && complete -p sdpline' _ "$completion"
finish
