#!/usr/bin/env bash
# sdpline decode, and what all subcommands have in common.
. "$(dirname "$0")/expect.sh"

expect "a file" 0 good.tree nothing -- "$program" decode good.sdp
expect "standard input" 0 good.tree nothing -- sh -c '"$1" decode <good.sdp' _ "$program"
expect "- is standard input" 0 good.tree nothing -- sh -c '"$1" decode - <good.sdp' _ "$program"
message good.sip good.sdp
expect "a SIP message" 0 good.tree nothing -- "$program" decode good.sip
expect "the shipped example" 0 - nothing -- "$program" decode "$source/examples/offer.sip"

cat >refused <<'TEXT'
bad.sdp:4:16: expected an octet of at most 255; found "256" (sdpparser sdpConnectionFieldAddrIpv4, 0x05035065)
TEXT
expect "a refused body" 1 nothing refused -- "$program" decode bad.sdp
cat >empty <<'TEXT'
nothing: the body is empty (sdpparser SdpLibParseSdp, 0x05000401)
TEXT
expect "an empty body" 1 nothing empty -- "$program" decode nothing
{ cat good.sdp && head -c 4094 /dev/zero | tr '\0' x; } | head -c 4094 >big
cat >long <<'TEXT'
big: the body is 4094 bytes long, more than 4093 (sdpparser SdpLibParseSdp, 0x05000401)
  hint: --max-body allows bodies of up to 65535 bytes
TEXT
expect "a body that is too long" 1 nothing long -- "$program" decode big
head -c 4094 /dev/zero >binary
expect "a binary file" 1 nothing '~hint: a body begins with "v=0"' -- "$program" decode binary
echo 'sdpline: none.sdp: No such file or directory' >none
expect "a file that is not there" 2 nothing none -- "$program" decode none.sdp
mkdir folder && cp good.sdp folder
expect "a folder" 0 good.tree nothing -- "$program" decode folder

# ---- Several bodies
{ echo "# good.sdp:1"; cat good.tree; echo; echo "# good.sip:6"; cat good.tree; } >titled
expect "two files" 0 titled nothing -- "$program" decode good.sdp good.sip
expect "two files, one refused" 1 "~^# good.sdp:1$" refused -- "$program" decode good.sdp bad.sdp
cat good.sip good.sip >two.sip
{ echo "# two.sip:6"; cat good.tree; echo; echo "# two.sip:16"; cat good.tree; } >titled
expect "two messages in a file" 0 titled nothing -- "$program" decode two.sip

# ---- Options
file avpf.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
m=audio 5004 RTP/AVPF 0
SDP
expect "RTP/AVPF is other text" 0 '~proto "RTP/AVPF" format "0"$' nothing -- \
  "$program" decode avpf.sdp
expect "--avpf: a protocol of its own" 0 '~proto RTP/AVPF payloads 0 .PCMU.$' nothing -- \
  "$program" decode --avpf avpf.sdp
file browser.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
t=0 0
m=audio 9 UDP/TLS/RTP/SAVPF 111 0
SDP
cat >family <<'TEXT'
browser.sdp:5:32: unexpected text after the format: this protocol takes one format; found "0" (sdpparser sdpOtherMediaFmt, 0x050f1465)
  hint: --rtp-family reads the formats of every RTP protocol as payload numbers
TEXT
expect "payload numbers of an unknown protocol" 1 nothing family -- "$program" decode browser.sdp
sed 's/RTP\/SAVPF/RTP\/XAVP/' browser.sdp >unknown.sdp
sed '/hint/d; s/browser.sdp:5:32/unknown.sdp:5:31/' family >unknown
expect "no hint for a protocol that is none of RTP" 1 nothing unknown -- \
  "$program" decode --rtp-family unknown.sdp
expect "--rtp-family" 0 '~proto "UDP/TLS/RTP/SAVPF" payloads 111 0 .PCMU.$' nothing -- \
  "$program" decode --rtp-family browser.sdp
"$program" format --rtp-family browser.sdp >formatted
expect "its JSON" 0 formatted nothing -- \
  sh -c '"$1" decode --rtp-family --json browser.sdp | "$1" encode' _ "$program"
{ cat good.sdp; yes $'a=x:0123456789\r' | head -300; } >long.sdp
expect "--max-body" 0 - nothing -- "$program" decode --max-body 5000 long.sdp
expect "longer still" 1 nothing '~is 5057 bytes long, more than 5000 ' -- \
  "$program" decode --max-body 5000 <(cat long.sdp; printf 'a=%0200d' 1)
"$program" format --max-body 65535 long.sdp >formatted
expect "JSON of a long body" 0 formatted nothing -- \
  sh -c '"$1" decode --max-body 65535 --json long.sdp | "$1" encode --max-body 65535' _ "$program"
expect "--max-body above the limit" 2 nothing '~--max-body: Value 65536 not in range' -- \
  "$program" decode --max-body 65536 long.sdp
file names.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
m=audio 5004 RTP/AVP 0 97 96 33
a=rtpmap:97 telephone-event/8000
a=rtpmap:8 PCMA/8000
SDP
cat >names.tree <<'TREE'
version 0
origin "-" session "1" version "2" IN IP4 "192.0.2.1"
name "-"
media audio port 5004 ports 1 proto RTP/AVP payloads 0 (PCMU) 97 (telephone-event) 96 33 (MP2T)
  attribute 1 rtpmap payload 97 profile 0 name "telephone-event" clock 8000 channels 1
  attribute 1 rtpmap payload 8 profile 7 (PCMA/8000) name "PCMA" clock 8000 channels 1
TREE
expect "names beside payload types and profiles" 0 names.tree nothing -- "$program" decode names.sdp
cat >good.json <<'JSON'
{
  "version": 0,
  "origin": {
    "userName": "-",
    "sessionId": "1",
    "sessionVersion": "2",
    "netType": {
      "code": 1,
      "word": "IN"
    },
    "addrType": {
      "code": 1,
      "word": "IP4"
    },
    "address": "192.0.2.1"
  },
  "name": "-",
  "times": [
    {
      "start": 0,
      "stop": 0
    }
  ],
  "attributes": [
    {
      "type": {
        "code": 6,
        "word": "ptime"
      },
      "value": 20
    }
  ],
  "media": []
}
JSON
expect "--json" 0 good.json nothing -- "$program" decode --json good.sdp
cat good.json good.json >twice.json
expect "--json of two bodies" 0 twice.json nothing -- "$program" decode --json two.sip

# ---- The program
expect "--help" 0 '~^Subcommands:$' nothing -- "$program" --help
expect "--version" 0 '~^sdpline [0-9]+\.[0-9]+\.[0-9]+$' nothing -- "$program" --version
for subcommand in decode format encode check diff explain profiles; do
  expect "$subcommand --help" 0 "~^  sdpline $subcommand" nothing -- "$program" $subcommand --help
  expect "$subcommand --nonsense" 2 nothing '~--nonsense' -- \
    "$program" $subcommand --nonsense good.sdp good.sdp
done
expect "no subcommand" 2 nothing '~A subcommand is required' -- "$program"
expect "an unknown subcommand" 2 nothing - -- "$program" frobnicate
for subcommand in "decode good.sdp" "format good.sdp" "encode good.json" "check good.sdp" \
  "diff good.sdp good.sdp --json" "explain 1" profiles; do
  expect "$subcommand: output that cannot be written" 2 - '~cannot write the output' -- \
    sh -c '"$1" $2 >/dev/full' _ "$program" "$subcommand"
done
finish
