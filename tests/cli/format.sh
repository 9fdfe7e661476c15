#!/usr/bin/env bash
# sdpline format
. "$(dirname "$0")/expect.sh"

expect "a file" 0 good.sdp nothing -- "$program" format good.sdp
message good.sip good.sdp
expect "a SIP message" 0 good.sdp nothing -- "$program" format good.sip
expect "standard input" 0 good.sdp nothing -- sh -c '"$1" format <good.sip' _ "$program"
expect "a refused body" 1 nothing '~^bad.sdp:4:16: expected an octet' -- "$program" format bad.sdp
{ cat good.sdp; printf '\r\n'; cat good.sdp; } >two.sdp
expect "two bodies, an empty line between" 0 two.sdp nothing -- "$program" format good.sdp good.sip

# ---- Line ends
tr -d '\r' <good.sdp >lf.sdp
tr -d '\n' <good.sdp >cr.sdp
expect "--line-end crlf" 0 good.sdp nothing -- "$program" format --line-end crlf lf.sdp
expect "--line-end lf" 0 lf.sdp nothing -- "$program" format --line-end lf good.sdp
expect "--line-end cr" 0 cr.sdp nothing -- "$program" format --line-end cr good.sdp
{ cat lf.sdp; echo; cat lf.sdp; } >two.lf
expect "--line-end lf of two bodies" 0 two.lf nothing -- \
  "$program" format --line-end=lf good.sdp good.sdp
expect "--line-end of another kind" 2 nothing '~--line-end: nl not in' -- \
  "$program" format --line-end nl good.sdp

# ---- T.38 flags
fax() {
  printf 'v=0\r\no=- 1 2 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\nm=image 5000 udptl t38\r\n'
  printf 'a=%s\r\n' "$@"
}
fax T38FaxFillBitRemoval T38FaxTranscodingMMR:0 >fax.sdp
fax T38FaxFillBitRemoval >names
fax T38FaxFillBitRemoval:1 T38FaxTranscodingMMR:0 >values
expect "T.38 flags by default" 0 names nothing -- "$program" format fax.sdp
expect "--t38 0" 0 names nothing -- "$program" format --t38 0 fax.sdp
expect "--t38 1" 0 names nothing -- "$program" format --t38 1 fax.sdp
expect "--t38 2" 0 values nothing -- "$program" format --t38 2 fax.sdp
expect "--t38 3" 2 nothing '~--t38: Value 3 not in range' -- "$program" format --t38 3 fax.sdp

# ---- RTP/AVPF
file avpf.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
t=0 0
m=audio 5004 RTP/AVPF 0 8
SDP
expect "two payloads of an unknown protocol" 1 nothing '~^avpf.sdp:5:24: ' -- "$program" format avpf.sdp
expect "--avpf" 0 avpf.sdp nothing -- "$program" format --avpf avpf.sdp
finish
