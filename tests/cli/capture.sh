#!/usr/bin/env bash
# Captures of packets as inputs of every command: capture.sh PROGRAM SOURCE_DIR MAKECAPTURE
makecapture=$3
. "$(dirname "$0")/expect.sh"
"$makecapture" calls >calls.pcap
"$makecapture" transports >transports.pcap
"$makecapture" unread >unread.pcap

cat >refused <<'TEXT'
calls.pcap:frame 8 (10.0.0.1 > 10.0.0.2, INVITE, Call-ID refused@10.0.0.1):4:17: error: expected an octet of at most 255; found "256" [ConnLastOctetRange]
    4 | c=IN IP4 10.0.0.256
      |                 ^
checked 13 bodies in 1 file: 1 refused
TEXT
expect "check" 1 refused nothing -- "$program" check calls.pcap
sed 's/^calls.pcap:/standard input:/' refused >piped
expect "from a pipe" 1 piped nothing -- sh -c 'cat calls.pcap | "$1" check' _ "$program"
echo 'checked 10 bodies in 1 file: none refused' >summary
expect "every transport" 0 summary nothing -- "$program" check transports.pcap

expect "what can be read" 0 '~^captures: pcap, pcapng$' nothing -- "$program" --version
expect "and unpacked" 0 '~^compressed inputs: ([a-z]+(, [a-z]+)*|none \(built without .*\))$' nothing -- \
  "$program" --version

# ---- Compressed
for tool in gzip zstd; do
  grep -q "^compressed inputs: .*$tool" <<<"$("$program" --version)" || continue
  command -v $tool >/dev/null || continue
  $tool -c calls.pcap >packed
  sed 's/^calls.pcap:/packed:/' refused >named
  expect "$tool" 1 named nothing -- "$program" check packed
  { $tool -c good.sdp; printf '\r\n' | $tool -c; $tool -c good.sdp; } >two
  echo 'checked 2 bodies in 1 file: none refused' >summary
  expect "a text of three parts, $tool" 0 summary nothing -- "$program" check two
  head -c 500 packed >cut
  expect "$tool, cut" 2 - "~sdpline: cut: its $tool data ends too early$" -- "$program" check cut
  { head -c 100 packed; printf 'xxxxxxxxxxxxxxxxxxxx'; tail -c +121 packed; } >damaged
  expect "$tool, damaged" 2 - "~sdpline: damaged: its $tool data is damaged" -- \
    "$program" check damaged
done

# ---- Packets that cannot be read
cat >problems <<'TEXT'
sdpline: unread.pcap: 2 packets are encrypted (TLS)
sdpline: unread.pcap: 1 packet lacks fragments
sdpline: unread.pcap: 1 SIP message is cut: the capture was made with a limit on the size of packets
TEXT
echo 'checked 2 bodies in 1 file: none refused, 1 problem' >summary
expect "what is not read" 2 summary problems -- "$program" check unread.pcap
head -c 100 calls.pcap >short
printf 'sdpline: short: %s\n' "the capture ends inside a packet" "no SIP message is in 0 packets" \
  >problems
expect "a capture that ends early" 2 - problems -- "$program" check short
{ head -c 24 calls.pcap; printf '%020d' 0; } >damaged
expect "a damaged capture" 2 - '~packet 1 has a length of 808464432 bytes: the capture is damaged$' \
  -- "$program" check damaged

# ---- Filters
expect "--call-id" 1 '~^checked 1 body in 1 file: 1 refused$' nothing -- \
  "$program" check --call-id refused@10.0.0.1 calls.pcap
expect "--method" 1 '~^checked 13 bodies' nothing -- "$program" check --method INVITE calls.pcap
expect "a status" 0 '~^checked 6 bodies' nothing -- "$program" check --method 200 calls.pcap
expect "--from" 1 '~^checked 13 bodies' nothing -- "$program" check --from alice@ calls.pcap
expect "--frame" 0 '~^checked 1 body in' nothing -- "$program" check --frame 1 calls.pcap
expect "nothing selected" 2 - '~^sdpline: calls.pcap: none of 13 bodies is selected$' -- \
  "$program" check --call-id nobody calls.pcap
message trace good.sdp 'i: a@b' 'f: <sip:x@y>;tag=1' 'CSeq: 1 INVITE' 'c: application/sdp'
expect "a trace" 0 good.tree nothing -- "$program" decode --call-id a@b --from x@y trace
expect "a body without a message" 0 good.tree nothing -- "$program" decode --call-id x good.sdp

# ---- Every command
expect "decode" 0 '~^origin "-" session "1"' nothing -- "$program" decode --frame 1 calls.pcap
expect "titles" 1 '~^# calls.pcap:frame 1 \(10.0.0.1 > 10.0.0.2, INVITE, Call-ID good@10.0.0.1\):1$' \
  - -- "$program" decode calls.pcap
expect "format" 0 '~^m=audio 49170 RTP/AVP 0 101' nothing -- "$program" format --frame 1 calls.pcap
cp calls.pcap other.pcap
expect "diff" 0 nothing nothing -- "$program" diff --frame 1 calls.pcap other.pcap
"$program" format --frame 4 calls.pcap >local.sdp
expect "answer" 0 '~^m=audio 3456 RTP/AVP 0' - -- "$program" answer --with local.sdp --frame 1 calls.pcap
expect "tidy" 2 '~^c=IN IP4 10.0.0.256' \
  '~^calls.pcap:frame 8 \(10.0.0.1 > 10.0.0.2, INVITE, Call-ID refused@10.0.0.1\):4:17: ' -- \
  "$program" tidy calls.pcap
expect "tidy --in-place" 2 nothing '~a capture cannot be written back$' -- \
  "$program" tidy --in-place calls.pcap

# ---- JSON and masks
"$program" check --json --frame 8 calls.pcap >json
if command -v jq >/dev/null; then
  echo '8 10.0.0.1 5060 10.0.0.2 5060 UDP INVITE refused@10.0.0.1 1 INVITE sip:alice@10.0.0.1 2023-11-14T22:13:20.140000000Z' >known
  expect "the origin in JSON" 0 known nothing -- jq -r '.bodies[0].origin | "\(.frame) \(.source)
\(.sourcePort) \(.destination) \(.destinationPort) \(.transport) \(.message) \(.callId) \(.cseq)
\(.from) \(.time)" | gsub("\n"; " ")' json
fi
"$program" check --redact calls.pcap >masked 2>&1
"$program" check --redact --json calls.pcap >>masked 2>&1
"$program" tidy --redact calls.pcap >>masked 2>&1
expect "masks" 0 '~frame 8 \(198.18.0.1 > 198.18.0.2, INVITE, Call-ID word[0-9]+@198.18.0.1\)' nothing -- \
  cat masked
expect "no address and no Call-ID is left" 1 nothing nothing -- \
  grep -E '10\.0\.0|refused@|alice' masked

# ---- Bodies written to files
expect "--extract" 1 - nothing -- "$program" check --extract bodies calls.pcap
ls bodies | head -2 >got
printf '%s\n' calls-1-INVITE-good_10.0.0.1.sdp calls-11-INVITE-lines_10.0.0.1.sdp >known
expect "their names" 0 known nothing -- cat got
expect "their number" 0 '~^13$' nothing -- sh -c 'ls bodies | wc -l'
expect "their text" 0 local.sdp nothing -- cat bodies/calls-4-200-good_10.0.0.1.sdp
expect "no file is written over" 2 - '~good_10.0.0.1.sdp: File exists$' -- \
  "$program" check --extract bodies --frame 1 calls.pcap
sed 's/^i: .*/i: ..\/..\/etc\/x y\r/' trace >evil
expect "safe names" 0 - nothing -- "$program" check --extract out evil
expect "in the folder" 0 '~^evil-[0-9]+-INVITE-_._.._etc_x_y.sdp$' nothing -- ls out
finish
