#!/usr/bin/env bash
# Checks in the built files that a release build is hardened.
# usage: hardening.sh COMPILE_COMMANDS FILE...     compile_commands.json; libraries and programs
set -euo pipefail
commands=$1
shift
status=0

complain() {
  echo "$*" >&2
  status=1
}

for file in "$@"; do
  # Stored first: a pipe into grep -q would end readelf early.
  headers=$(readelf --wide --file-header --program-headers "$file")
  dynamic=$(readelf --wide --dynamic "$file")
  imports=$(readelf --wide --dyn-syms "$file" | awk '$7 == "UND" { sub(/@.*/, "", $8); print $8 }')

  grep -qE 'Type: +DYN' <<<"$headers" || complain "$file lies at a fixed address"
  stack=$(awk '$1 == "GNU_STACK" { print $7 }' <<<"$headers")
  [ "$stack" = RW ] || complain "$file: its stack is '$stack', not RW"
  grep -q 'GNU_RELRO' <<<"$headers" || complain "$file: tables of addresses stay writable"
  grep -qE '\((FLAGS|BIND_NOW)\).*BIND_NOW|\(FLAGS_1\).*NOW' <<<"$dynamic" ||
    complain "$file: functions are bound late"
  grep -q 'TEXTREL' <<<"$dynamic" && complain "$file: its code is changed at the start"
  grep -qE '^ *LOAD .* RWE ' <<<"$headers" &&
    complain "$file: memory that is written and executed"
  grep -qx '__stack_chk_fail' <<<"$imports" || complain "$file: no guards on the stack"
done

# The sources copy no object of a known size by a length known only at run time, so the files
# contain no checked copies of the C library: the compiler commands are checked instead.
compiled=$(grep -E '"command":.* -c [^"]*/(src|cli)/[^"]*\.cpp"' "$commands" || true)
[ "$(wc -l <<<"$compiled")" -ge 30 ] || complain "$commands lists too few sources"
options=(-D_FORTIFY_SOURCE=3 -fstack-protector-strong -O)
if [ "$(uname -m)" = x86_64 ]; then
  options+=(-fcf-protection)
  # A function that is called through a pointer begins with endbr64.
  first=$(objdump -d --no-show-raw-insn --disassemble=SdpLibDecodeSdp "$1" |
    awk '/<SdpLibDecodeSdp>:/ { getline; print $2; exit }')
  [ "$first" = endbr64 ] || complain "$1: SdpLibDecodeSdp begins with '$first', not endbr64"
fi
for option in "${options[@]}"; do
  without=$(grep -vcF -e " $option" <<<"$compiled" || true)
  [ "$without" -eq 0 ] || complain "$without sources are compiled without $option"
done
[ $status -eq 0 ] && echo "$# files as they should be"
exit $status
