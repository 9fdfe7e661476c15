#!/usr/bin/env bash
# --redact of decode, format and check: the masks are the same.
. "$(dirname "$0")/expect.sh"

file call.sdp <<'SDP'
v=0
o=alice 1 2 IN IP4 10.1.2.3
s=call with bob@example.com at 10.1.2.3:5060
e=alice@example.com (Alice)
p=+1 617 555-6011
c=IN IP4 10.1.2.3
t=0 0
k=clear:topsecret
m=audio 49170 RTP/SAVP 0
c=IN IP6 2001:db8:7::5
a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:d0RmdmcmVCspeEc3QGZiNWpVLFJhQX1cfHAwJSoj|2^20|1:32
a=fingerprint:sha-256 12:DF:3E
a=ice-ufrag:abcd
a=ice-pwd:verysecret
a=candidate:1 1 UDP 2130706431 10.1.2.4 8998 typ srflx raddr 10.1.2.3 rport 8 ufrag abcd
a=rtcp:53020 IN IP4 10.1.2.3
SDP
file masked.sdp <<'SDP'
v=0
o=user1 1 1 IN IP4 198.18.0.1
s=call with email1@redacted.invalid at 198.18.0.1:5060
e=email2@redacted.invalid
p=phone1
c=IN IP4 198.18.0.1
t=0 0
k=clear:secret1
m=audio 49170 RTP/SAVP 0
c=IN IP6 2001:0DB8:0000:0000:0000:0000:0000:0001
a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:secret2
a=fingerprint:sha-256 secret3
a=ice-ufrag:secret4
a=ice-pwd:secret5
a=candidate:1 1 UDP 2130706431 198.18.0.2 8998 typ srflx raddr 198.18.0.1 rport 8 ufrag secret4
a=rtcp:53020 IN IP4 198.18.0.1
SDP
expect "format" 0 masked.sdp nothing -- "$program" format --redact call.sdp
"$program" decode masked.sdp >masked.tree
expect "decode" 0 masked.tree nothing -- "$program" decode --redact call.sdp
expect "decode --json" 0 masked.sdp nothing -- \
  sh -c '"$1" decode --json --redact call.sdp | "$1" encode' _ "$program"
{ cat masked.sdp; printf '\r\n'; cat masked.sdp; } >twice.sdp
expect "the same values in two files" 0 twice.sdp nothing -- \
  "$program" format --redact call.sdp call.sdp

{ sed 's/^t=.*/t=x\r/' call.sdp; printf 'a=ice-pwd topsecret\r\na=rtcp:x 10.1.2.4 x y\xff\r\nme\r\n'; } >bad.sdp
# The password of line 17 is the key of line 8.
cat >refused <<'TEXT'
bad.sdp:7:3: error: expected a number as the start time; found "x" [TimeStart]
    7 | t=x
      |   ^
  hint: the line is t=START STOP, in seconds; 0 0 is a session without end
bad.sdp:17:10: error: expected ":" or the line end after an unknown attribute; found a space [UnrecEnd] (line checked by itself)
   17 | a=ice-pwd secret1
      |          ^
bad.sdp:19:1: error: no line of SDP begins like this [LineKind] (line checked by itself)
   19 | xx
      | ^
checked 1 body in 1 file: 1 refused
TEXT
expect "check" 1 refused nothing -- "$program" check --redact --every-line bad.sdp
expect "check --json" 1 '~"text": "a=ice-pwd secret1"' nothing -- \
  "$program" check --json --redact --every-line bad.sdp
sed 's/^o=.*/o=alicia 1 2 IN IP4 10.1.2.3 \r/' call.sdp >origin.sdp
cat >refused <<'TEXT'
origin.sdp:2:31: error: unexpected text after the address; found a space [OriginEnd]
    2 | o=user1 1 1 IN IP4 198.18.0.1 
      |                              ^
  hint: the line is o=USER SESSION-ID VERSION IN IP4 ADDRESS
origin.sdp:1: note: tidy makes it acceptable: TrailingSpace
checked 1 body in 1 file: 1 refused
TEXT
sed -i '1s/:31:/:29:/' refused
expect "the mark moves with the masks" 1 refused nothing -- "$program" check --redact origin.sdp
for word in alice alicia example 617 10.1.2 secret. verysecret topsecret d0Rm DF:3E abcd; do
  "$program" format --redact call.sdp >out
  "$program" check --redact --every-line bad.sdp origin.sdp >>out
  expect "nothing of $word is left" 1 nothing nothing -- grep -F -- "$word" out
done
finish
