#!/usr/bin/env bash
# sdpline diff
. "$(dirname "$0")/expect.sh"

session a.sdp '1 1 IN IP4 192.0.2.1' 192.0.2.1 <<'SDP'
m=audio 5004 RTP/AVP 0 8 101
a=rtpmap:101 telephone-event/8000
a=ptime:20
m=video 5006 RTP/AVP 31
a=x:y
SDP
file b.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=talk
c=IN IP4 192.0.2.1
t=0 0
m=audio 6004 RTP/AVP 8 0 96
a=sendonly
a=ptime:30
a=rtpmap:96 AMR/8000
m=video 0 RTP/AVP 31
c=IN IP4 192.0.2.9
m=image 5008 udptl t38
SDP
cat >text <<'TEXT'
session: origin session version 1 -> 2
session: name - -> talk
media 1 audio: port 5004 -> 6004
media 1 audio: payload 101 (telephone-event/8000) removed
media 1 audio: payload 96 (AMR/8000) added
media 1 audio: payload order 0 8 -> 8 0
media 1 audio: direction sendrecv -> sendonly
media 1 audio: attribute a=rtpmap:101 telephone-event/8000 removed
media 1 audio: attribute a=ptime:20 -> a=ptime:30
media 1 audio: attribute a=rtpmap:96 AMR/8000 added
media 2 video: port 5006 -> 0
media 2 video: connection IN IP4 192.0.2.1 -> IN IP4 192.0.2.9
media 2 video: attribute a=x:y removed
media 3 image: description m=image 5008 udptl t38 added
TEXT
expect "different bodies" 1 text nothing -- "$program" diff a.sdp b.sdp
expect "one body" 0 nothing nothing -- "$program" diff a.sdp a.sdp
message a.sip a.sdp
expect "the same in a SIP message" 0 nothing nothing -- "$program" diff a.sdp a.sip
expect "standard input" 0 nothing nothing -- sh -c '"$1" diff a.sdp - <a.sip' _ "$program"
"$program" format --line-end lf a.sdp >a.lf
expect "other line ends" 0 nothing nothing -- "$program" diff a.sdp a.lf

printf '{\n  "same": true,\n  "changes": []\n}\n' >same.json
expect "--json, the same" 0 same.json nothing -- "$program" diff --json a.sdp a.sdp
sed 's/ptime:20/ptime:9/; s/a=x:y/a=z/' a.sdp >c.sdp
cat >c.json <<'JSON'
{
  "same": false,
  "changes": [
    {
      "what": "attribute",
      "media": 1,
      "mediaType": "audio",
      "from": "a=ptime:20",
      "to": "a=ptime:9"
    },
    {
      "what": "attribute",
      "media": 2,
      "mediaType": "video",
      "from": "a=x:y"
    },
    {
      "what": "attribute",
      "media": 2,
      "mediaType": "video",
      "to": "a=z"
    }
  ]
}
JSON
expect "--json, different" 1 c.json nothing -- "$program" diff --json a.sdp c.sdp
printf 's=\033[1m\r\n' >escape
sed -e '/^s=/{r escape
d}' a.sdp >d.sdp
echo 'session: name - -> \x1b[1m' >text
expect "bytes that a terminal would obey" 1 text nothing -- "$program" diff a.sdp d.sdp
sed 's/RTP\/AVP /RTP\/AVPF /' a.sdp >avpf.sdp
expect "RTP/AVPF is refused with many payloads" 2 nothing '~^avpf.sdp:6:24: ' -- \
  "$program" diff a.sdp avpf.sdp
expect "--avpf" 1 '~^media 1 audio: protocol RTP/AVP -> RTP/AVPF$' nothing -- \
  "$program" diff --avpf a.sdp avpf.sdp

# ---- Masks
file mine.sdp <<'SDP'
v=0
o=alice 2890844526 1 IN IP4 192.0.2.1
s=call with bob
p=+1 617 555-6011
c=IN IP4 192.0.2.1
t=0 0
m=audio 5004 RTP/AVP 0
a=label:desk
a=ice-pwd:topsecret
a=candidate:c0000201 1 udp 1 alices-phone 9 typ host
SDP
file theirs.sdp <<'SDP'
v=0
o=bob 2890844527 2 IN IP4 192.0.2.9
s=-
c=IN IP4 192.0.2.9
t=0 0
m=audio 6004 RTP/AVP 0
a=label:attic
a=ice-pwd:othersecret
SDP
cat >text <<'TEXT'
session: origin user user1 -> word1
session: origin session id 1 -> 2
session: origin session version 1 -> 2
session: origin address 198.18.0.1 -> 198.18.0.2
session: name call with word1 -> -
session: phone phone1 removed
session: connection IN IP4 198.18.0.1 -> IN IP4 198.18.0.2
media 1 audio: port 5004 -> 6004
media 1 audio: attribute a=label:word2 -> a=label:word4
media 1 audio: attribute a=ice-pwd:secret1 -> a=ice-pwd:secret2
media 1 audio: attribute a=candidate:word3 1 udp 1 host1.invalid 9 typ host removed
TEXT
expect "--redact" 1 text nothing -- "$program" diff --redact mine.sdp theirs.sdp
expect "--redact --json" 1 '~"from": "a=ice-pwd:secret1"' nothing -- \
  "$program" diff --redact --json mine.sdp theirs.sdp
expect "no difference with masks" 0 nothing nothing -- "$program" diff --redact mine.sdp mine.sdp

# ---- Errors
expect "a refused body" 2 nothing '~^bad.sdp:4:16: expected an octet' -- "$program" diff a.sdp bad.sdp
expect "a missing file" 2 nothing '~^sdpline: none: No such file' -- "$program" diff none a.sdp
cat a.sip a.sip >two.sip
echo 'sdpline: two.sip: expected one body, found 2' >two
expect "two bodies" 2 nothing two -- "$program" diff a.sdp two.sip
expect "one file only" 2 nothing '~B is required' -- "$program" diff a.sdp
finish
