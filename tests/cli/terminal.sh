#!/usr/bin/env bash
# Colour and the progress bar, which appear only on a terminal. script(1) makes one; without
# /dev/pts, as in some containers, the test is skipped.
if ! script -qec true /dev/null >/dev/null 2>&1; then
  echo "no pseudo-terminal can be made here"
  exit 77
fi
. "$(dirname "$0")/expect.sh"
export TERM=xterm

onTerminal() { script -qec "$*" /dev/null | tr -d '\r'; }

printf 'v=0\no=- 1 2 IN IP4 x\ns=-\nf=1\n' >f.sdp
printf '\033[1mf.sdp:4:1: \033[0m\033[1;31merror: \033[0m\033[1munexpected line after the s= line; found "f="\033[0m [AfterName]\n    4 | f=1\n      | \033[1;32m^\033[0m\n  hint: the lines of a session come in the order v= o= s= i= u= e= p= c= b= t= r= z= k= a= m=\nf.sdp:1: note: tidy makes it acceptable: LineUnknown, TimeMissing\nchecked 1 body in 1 file: 1 refused\n' >coloured
sed 's/\x1b\[[0-9;]*m//g' coloured >plain
expect "colour on a terminal" 1 coloured nothing -- onTerminal "$program check f.sdp"
expect "none with NO_COLOR" 1 plain nothing -- onTerminal "NO_COLOR=1 $program check f.sdp"
expect "an empty NO_COLOR is none" 1 coloured nothing -- onTerminal "NO_COLOR= $program check f.sdp"
expect "none on a dumb terminal" 1 plain nothing -- onTerminal "TERM=dumb $program check f.sdp"
expect "none through a pipe" 1 plain nothing -- onTerminal "$program check f.sdp | cat; exit 1"
expect "none in a file" 1 plain nothing -- "$program" check f.sdp
sed 's/ptime:20/ptime:30/' good.sdp >other.sdp
printf '\033[1msession\033[0m: attribute \033[31ma=ptime:20\033[0m -> \033[32ma=ptime:30\033[0m\n' >coloured
expect "diff has colour" 1 coloured nothing -- onTerminal "$program diff good.sdp other.sdp"

# ---- Progress
mkdir many few
for i in $(seq 10 39); do cp good.sdp "many/$i"; done
for i in $(seq 10 28); do cp good.sdp "few/$i"; done
echo 'checked 30 bodies in 30 files: none refused' >summary
expect "no bar without a terminal" 0 summary nothing -- "$program" check many
script -qec "$program check many 2>err.txt" /dev/null >/dev/null
expect "no bar where standard error is a file" 0 nothing nothing -- cat err.txt
script -qec "$program check many >out.txt" /dev/null >bar
expect "a bar on the terminal" 0 nothing nothing -- cmp out.txt summary
left=', [0-9]+ MB/s, [0-9]+:[0-9][0-9] left'
expect "it begins" 0 - nothing -- grep -E "\[#*\.*\] 1/30 files$left" bar
expect "it ends" 0 - nothing -- grep -E "\[#{30}\] 30/30 files$left" bar
expect "it goes away" 0 - nothing -- grep -P '\r +\r$' bar
script -qec "$program check few >out.txt" /dev/null >bar
expect "no bar for a few files" 0 nothing nothing -- cat bar
message large good.sdp # and a hole
truncate -s 40000000 large
script -qec "$program check large >out.txt" /dev/null >bar
expect "a bar for a large file" 0 - nothing -- grep -E "\[#+\.*\] [0-9.]+ of [0-9.]+ MB$left" bar
expect "nothing is left of it" 0 - nothing -- grep -P '\r +\r$' bar
script -qec "cat large | $program calls >out.txt" /dev/null >bar
expect "a pipe has no known end" 0 - nothing -- grep -E $'\r[0-9.]+ MB, [0-9]+ MB/s' bar
expect "and no time that is left" 1 nothing nothing -- grep left bar
script -qec "$program check --quiet large >out.txt" /dev/null >bar
expect "no bar with --quiet" 0 nothing nothing -- cat bar
cp bad.sdp many/20
script -qec "$program check many" /dev/null >bar
expect "a refusal is on a separate line" 0 - nothing -- grep -P '\r\x1b\[1mmany/20:4:16: ' bar
finish
