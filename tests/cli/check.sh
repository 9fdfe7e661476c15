#!/usr/bin/env bash
# sdpline check
. "$(dirname "$0")/expect.sh"

echo 'checked 1 body in 1 file: none refused' >summary
expect "a good body" 0 summary nothing -- "$program" check good.sdp
expect "standard input" 0 summary nothing -- sh -c '"$1" check - <good.sdp' _ "$program"
cat >refused <<'TEXT'
bad.sdp:4:16: error: the fourth octet is above 255 [ConnLastOctetRange]
    4 | c=IN IP4 1.2.3.256
      |                ^
checked 1 body in 1 file: 1 refused
TEXT
expect "a refused body" 1 refused nothing -- "$program" check bad.sdp
sed -i 's/^bad.sdp/standard input/' refused
expect "a refused body, standard input" 1 refused nothing -- sh -c '"$1" check <bad.sdp' _ "$program"
printf 'v=0\r\n   o=- 1 \0002 IN IP4 x\r\n s=-\r\n\0 \0c=IN IP4 1.2.3.\000256\r\n' >dropped.sdp
cat >refused <<'TEXT'
dropped.sdp:4:20: error: the fourth octet is above 255 [ConnLastOctetRange]
    4 | \0 \0c=IN IP4 1.2.3.\0256
      |                       ^
checked 1 body in 1 file: 1 refused
TEXT
expect "bytes that are dropped count" 1 refused nothing -- "$program" check dropped.sdp
printf 'v=0\no=- 1 2 IN IP4 x\n' >short.sdp
cat >refused <<'TEXT'
short.sdp:3:1: error: expected an s= line after the o= line [StartName]
    3 | 
      | ^
nothing:1: error: the body is empty [ParseArgument]
checked 2 bodies in 2 files: 2 refused
TEXT
expect "no place inside the text" 1 refused nothing -- "$program" check short.sdp nothing

# ---- Many files
mkdir -p folder/deeper folder/.hidden
cp good.sdp folder/b.sdp
cp bad.sdp folder/a.sdp
cp bad.sdp folder/deeper/c.sdp
cp bad.sdp folder/.hidden/d.sdp
cp bad.sdp folder/.e.sdp
cat >refused <<'TEXT'
folder/a.sdp:4:16: error: the fourth octet is above 255 [ConnLastOctetRange]
    4 | c=IN IP4 1.2.3.256
      |                ^
folder/deeper/c.sdp:4:16: error: the fourth octet is above 255 [ConnLastOctetRange]
    4 | c=IN IP4 1.2.3.256
      |                ^
checked 4 bodies in 4 files: 2 refused
TEXT
expect "a folder and a file" 1 refused nothing -- "$program" check folder good.sdp
echo 'sdpline: none: No such file or directory' >missing
echo 'checked 1 body in 1 file: none refused, 1 problem' >summary
expect "a file that is not there" 2 summary missing -- "$program" check none good.sdp
expect "a refused body and a missing file" 2 '~1 refused, 1 problem$' missing -- \
  "$program" check none bad.sdp
mkdir empty
echo 'checked 0 bodies in 0 files: none refused' >summary
expect "an empty folder" 0 summary nothing -- "$program" check empty
if [ "$(id -u)" -ne 0 ]; then
  mkdir closed && chmod 0 closed
  expect "a folder that is closed" 2 - '~^sdpline: closed: ' -- "$program" check closed
  chmod 700 closed
fi

# ---- Every line
file many.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
c=IN IP4 1.2.3.256
t=0 0
a=ptime:20.5
f=1
a=sendrecv
m=audio 5004 RTP/AVP 0 x
a=rtpmap:97 AMR 8000
a=des:qos e2e sendrecv

a=behind the end
SDP
cat >refused <<'TEXT'
many.sdp:4:16: error: the fourth octet is above 255 [ConnLastOctetRange]
    4 | c=IN IP4 1.2.3.256
      |                ^
many.sdp:6:11: error: unexpected text after the number [PacketEnd] (line judged on its own)
    6 | a=ptime:20.5
      |           ^
many.sdp:7:1: error: no line of SDP begins like this [LineKind] (line judged on its own)
    7 | f=1
      | ^
many.sdp:9:24: error: expected a payload number [Payload] (line judged on its own)
    9 | m=audio 5004 RTP/AVP 0 x
      |                        ^
many.sdp:10:21: error: expected "/" after the encoding name [RtpmapSlash] (line judged on its own)
   10 | a=rtpmap:97 AMR 8000
      |                     ^
many.sdp:11:11: error: expected mandatory, optional, none, failure or unknown as the strength [StrengthWord] (line judged on its own)
   11 | a=des:qos e2e sendrecv
      |           ^
checked 1 body in 1 file: 1 refused
TEXT
expect "--every-line" 1 refused nothing -- "$program" check --every-line many.sdp
echo 'checked 1 body in 1 file: none refused' >summary
expect "--every-line of a good body" 0 summary nothing -- "$program" check --every-line good.sdp
file avpf.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
s=twice
m=audio 5004 RTP/AVPF 0 8
SDP
expect "--every-line takes no RTP/AVPF" 1 '~^avpf.sdp:5:24: error: ' nothing -- \
  "$program" check --every-line avpf.sdp
cat >refused <<'TEXT'
avpf.sdp:4:1: error: unexpected line after the s= line [AfterName]
    4 | s=twice
      | ^
checked 1 body in 1 file: 1 refused
TEXT
expect "--every-line --avpf takes it" 1 refused nothing -- \
  "$program" check --every-line --avpf avpf.sdp

# ---- JSON
cat >json <<'JSON'
{
  "bodies": [
    {
      "file": "good.sdp",
      "line": 1,
      "offset": 0,
      "size": 55,
      "accepted": true,
      "diagnostics": []
    },
    {
      "file": "bad.sdp",
      "line": 1,
      "offset": 0,
      "size": 56,
      "accepted": false,
      "diagnostics": [
        {
          "line": 4,
          "column": 16,
          "offset": 51,
          "code": 84103269,
          "check": "ConnLastOctetRange",
          "sentence": "the fourth octet is above 255",
          "class": "FIELD_SYNTAX",
          "source": "sdpparser",
          "function": "sdpConnectionFieldAddrIpv4",
          "token": 3,
          "alone": false,
          "text": "c=IN IP4 1.2.3.256"
        }
      ]
    }
  ],
  "problems": [
    "none: No such file or directory"
  ],
  "summary": {
    "files": 2,
    "bodies": 2,
    "refused": 1,
    "problems": 1
  }
}
JSON
expect "--json" 2 json missing -- "$program" check --json good.sdp none bad.sdp
expect "--json --every-line" 1 '~"alone": true' nothing -- \
  "$program" check --json --every-line many.sdp
expect "--json without a place" 1 '~"line": null' nothing -- "$program" check --json nothing
finish
