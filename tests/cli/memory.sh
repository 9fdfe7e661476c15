#!/usr/bin/env bash
# Files that are larger than the memory limit of the program.
. "$(dirname "$0")/expect.sh"

# limited KB COMMAND...: runs the command with an address space of KB kilobytes.
limited() { (ulimit -v "$1" && shift && "$@"); }

# 160 MB, mostly NUL bytes that take no space on disk, with messages before, between and after them.
message good.sip good.sdp
message bad.sip bad.sdp
cp good.sip trace
truncate -s 80M trace && { echo; cat bad.sip; } >>trace
truncate -s 160M trace && { echo; cat good.sip; } >>trace
{
  badOctet trace 20
  echo 'checked 3 bodies in 1 file: 1 refused'
} >refused
expect "160 MB of messages" 1 refused nothing -- limited 150000 "$program" check trace
truncate -s 160M nothing.bin
echo 'sdpline: nothing.bin: it holds no SIP message, and 167772160 bytes are too many for a body' \
  >problem
expect "160 MB of nothing" 2 - problem -- limited 150000 "$program" check nothing.bin

cp good.sip trace
truncate -s 160M trace && { echo; cat bad.sip; } >>trace
expect "from a pipe" 1 - nothing -- limited 150000 sh -c 'cat trace | "$1" check' _ "$program"
{ echo "# trace:6"; cat good.tree; } >titled
expect "decode" 1 titled '~^trace:20:16: ' -- limited 150000 "$program" decode trace
sed 's/^Content-Length: .*/Content-Length: 400000000\r/' good.sip >endless
truncate -s 160M endless
expect "a message that does not end" 1 '~bytes long, more than 4093 \[ParseArgument\]$' - -- \
  limited 150000 "$program" check endless
cp good.sdp after && echo >>after && truncate -s 160M after && echo x >>after
echo 'sdpline: after:7: what follows an empty line in a body is not read' >unread
expect "much after a body" 0 good.tree unread -- limited 150000 "$program" decode after

# A JSON input is read into memory: one that does not fit is refused.
{ printf '['; yes 1, | tr -d '\n' | head -c 10000000; printf '1]'; } >many.json
expect "JSON that does not fit" 2 nothing '~^sdpline: many.json: it does not fit into memory$' -- \
  limited 80000 "$program" encode many.json
finish
