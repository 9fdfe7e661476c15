#!/usr/bin/env bash
# sdpline answer and sdpline negotiate-check
. "$(dirname "$0")/expect.sh"

session local.sdp '2 1 IN IP4 198.51.100.2' 198.51.100.2 <<'SDP'
m=audio 40000 RTP/AVP 0 8
m=video 40002 RTP/AVP 97
a=rtpmap:97 H264/90000
a=fmtp:97 profile-level-id=42e01f
SDP
session offer.sdp '1 1 IN IP4 192.0.2.1' 192.0.2.1 <<'SDP'
m=audio 49170 RTP/AVP 8 0
a=sendonly
a=x:y
m=video 49172 RTP/AVP 97
a=rtpmap:97 H264/90000
a=fmtp:97 profile-level-id=64001f
SDP
session answer.sdp '2 1 IN IP4 198.51.100.2' 198.51.100.2 <<'SDP'
m=audio 40000 RTP/AVP 8 0
a=recvonly
m=video 0 RTP/AVP 97
SDP
cat >notes <<'TEXT'
offer.sdp:6:1: note: stream 1 accepted: PCMA 8, PCMU 0; recvonly [Accepted, RFC 3264 6.1]
offer.sdp:6:1: note: stream 1: an attribute that is not ours is left out (x) [AttributeDropped, RFC 4566 5.13]
offer.sdp:9:1: note: stream 2 rejected: no common format (offered H264 profile 64, ours 42) [NoCommonFormat, RFC 3264 6]
TEXT
expect "an answer" 0 answer.sdp notes -- "$program" answer --with local.sdp offer.sdp
message offer.sip offer.sdp
"$program" answer --with local.sdp offer.sip >got 2>places
expect "of a SIP message" 0 answer.sdp nothing -- cat got
lines=$(grep -n '^m=' offer.sip | cut -d: -f1)
sed -n 's/^offer.sip:\([0-9]*\):1: note: stream.*/\1/p' places | sort -nu >got
printf '%s\n' $lines >known
expect "places in a SIP message" 0 known nothing -- cat got
"$program" answer --with local.sdp <offer.sdp >got 2>places
expect "standard input" 0 answer.sdp nothing -- cat got
sed 's/ 8 0/ 8/' answer.sdp >first.sdp
"$program" answer --with local.sdp --first offer.sdp >got 2>/dev/null
expect "--first" 0 first.sdp nothing -- cat got
sed 's/ 8 0/ 0 8/' answer.sdp >ours.sdp
"$program" answer --with local.sdp --order ours offer.sdp >got 2>/dev/null
expect "--order ours" 0 ours.sdp nothing -- cat got
"$program" answer --with local.sdp --previous answer.sdp offer.sdp >got 2>/dev/null
expect "--previous, nothing changed" 0 answer.sdp nothing -- cat got
sed 's/o=- 2 1/o=- 2 2/' answer.sdp >next.sdp
sed 's/ 8 0/ 8/' answer.sdp >previous.sdp
"$program" answer --with local.sdp --previous previous.sdp offer.sdp >got 2>/dev/null
expect "--previous, something changed" 0 next.sdp nothing -- cat got

sed 's/RTP\/AVP 8 0/RTP\/AVPF 8 0/' offer.sdp >avpf.sdp
"$program" answer --with local.sdp avpf.sdp >got 2>/dev/null
expect "RTP/AVPF is not RTP/AVP" 0 - nothing -- grep -q '^m=audio 0 RTP/AVPF 8 0' got
"$program" answer --with local.sdp --avp-for-avpf avpf.sdp >got 2>/dev/null
expect "--avp-for-avpf" 0 answer.sdp nothing -- cat got
sed 's/RTP\/AVP /UDP\/TLS\/RTP\/SAVPF /' offer.sdp >dtls.sdp
sed 's/RTP\/AVP /UDP\/TLS\/RTP\/SAVPF /; s/^m=video 4/m=video 4/' local.sdp >dtlslocal.sdp
"$program" answer --with dtlslocal.sdp dtls.sdp >got 2>/dev/null
expect "profiles of the RTP family" 0 - nothing -- grep -q '^m=audio 40000 UDP/TLS/RTP/SAVPF 8 0' got

sed 's/^m=\([a-z]*\) [0-9]*/m=\1 0/' local.sdp >none.sdp
"$program" answer --with none.sdp offer.sdp >got 2>places
expect "all rejected: the status" 1 - - -- "$program" answer --with none.sdp offer.sdp
expect "all rejected: the answer" 0 - nothing -- grep -q '^m=audio 0 RTP/AVP 8 0' got
expect "all rejected: said" 0 - nothing -- grep -q 'every offered stream is rejected \[AllRejected' places

cat >answer.json <<'JSON'
{
  "accepted": true,
  "answer": "v=0\r\no=- 2 1 IN IP4 198.51.100.2\r\ns=-\r\nc=IN IP4 198.51.100.2\r\nt=0 0\r\nm=audio 40000 RTP/AVP 0\r\n",
  "streams": [
    {
      "accepted": true,
      "local": 0,
      "direction": "sendrecv",
      "sends": true,
      "receives": true,
      "peerHeld": false,
      "held": false,
      "formats": [
        {
          "name": "PCMU",
          "clockRate": 8000,
          "channels": 1,
          "send": 0,
          "receive": 0,
          "sendParameters": "",
          "receiveParameters": ""
        }
      ],
      "sendPTime": null,
      "receivePTime": null,
      "sendMaxPTime": null,
      "receiveMaxPTime": null,
      "preconditions": "absent",
      "confirm": false
    }
  ],
  "decisions": [
    {
      "reason": 50,
      "name": "Accepted",
      "rfc": "RFC 3264",
      "section": "6.1",
      "stream": 1,
      "payload": null,
      "sentence": "stream 1 accepted: PCMU 0; sendrecv",
      "place": "plain.sdp:6:1"
    }
  ]
}
JSON
sed '/^m=video/,$d; /^a=/d; s/ 8 0/ 0/' offer.sdp >plain.sdp
expect "--json" 0 answer.json nothing -- "$program" answer --json --with local.sdp plain.sdp

echo "sdpline: missing.sdp: No such file or directory" >text
expect "no local body" 2 nothing text -- "$program" answer --with missing.sdp offer.sdp
expect "no offer" 2 nothing text -- "$program" answer --with local.sdp missing.sdp
expect "no previous body" 2 nothing text -- "$program" answer --with local.sdp --previous missing.sdp offer.sdp
expect "an operand is missing" 2 - - -- "$program" answer offer.sdp
printf 'v=0\r\n' >bad.sdp
expect "a body that is refused" 2 nothing - -- "$program" answer --with bad.sdp offer.sdp
message one.sip offer.sdp
cat one.sip one.sip >two.sip
echo "sdpline: two.sip: expected one body, found 2" >text
expect "two bodies" 2 nothing text -- "$program" answer --with local.sdp two.sip
# ---- negotiate-check
expect "a good answer" 0 nothing nothing -- "$program" negotiate-check offer.sdp answer.sdp
sed 's/recvonly/sendonly/; /^m=video/d' answer.sdp >wrong.sdp
cat >text <<'TEXT'
wrong.sdp:6:1: error: stream 1: the direction does not fit the offered one (offered sendonly, answered sendonly) [DirectionConflict, RFC 3264 6.1]
wrong.sdp:1:1: error: stream 2: an m= line of the offer has none in the answer [StreamMissing, RFC 3264 6]
TEXT
expect "a wrong answer" 1 text nothing -- "$program" negotiate-check offer.sdp wrong.sdp
expect "a good next offer" 0 nothing nothing -- "$program" negotiate-check --previous previous.sdp next.sdp
echo "next.sdp:1:1: error: the version did not rise by one (from 2 to 1) [VersionJumped, RFC 3264 8]" >text
expect "a wrong next offer" 1 - nothing -- "$program" negotiate-check --previous next.sdp previous.sdp
printf '{\n  "good": true,\n  "faults": []\n}\n' >good.json
expect "--json" 0 good.json nothing -- "$program" negotiate-check --json offer.sdp answer.sdp
expect "one operand" 2 - - -- "$program" negotiate-check offer.sdp
expect "two operands and --previous" 2 - - -- "$program" negotiate-check --previous a b c
finish
