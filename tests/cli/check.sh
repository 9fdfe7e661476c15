#!/usr/bin/env bash
# sdpline check
. "$(dirname "$0")/expect.sh"

echo 'checked 1 body in 1 file: none refused' >summary
expect "a good body" 0 summary nothing -- "$program" check good.sdp
expect "standard input" 0 summary nothing -- sh -c '"$1" check - <good.sdp' _ "$program"
{
  badOctet bad.sdp 4
  echo 'checked 1 body in 1 file: 1 refused'
} >refused
expect "a refused body" 1 refused nothing -- "$program" check bad.sdp
sed -i 's/^bad.sdp/standard input/' refused
expect "a refused body, standard input" 1 refused nothing -- sh -c '"$1" check <bad.sdp' _ "$program"
printf 'v=0\r\n   o=- 1 \0002 IN IP4 x\r\n s=-\r\n\0 \0c=IN IP4 1.2.3.\000256\r\n' >dropped.sdp
cat >refused <<'TEXT'
dropped.sdp:4:20: error: expected an octet of at most 255; found "256" [ConnLastOctetRange]
    4 | \0 \0c=IN IP4 1.2.3.\0256
      |                       ^
checked 1 body in 1 file: 1 refused
TEXT
expect "bytes that are dropped count" 1 refused nothing -- "$program" check dropped.sdp
printf 'v=0\no=- 1 2 IN IP4 x\n' >short.sdp
cat >refused <<'TEXT'
short.sdp:3:1: error: expected an s= line after the o= line; found the end of the text [StartName]
    3 | 
      | ^
  hint: a body begins with the lines v=, o= and s=
short.sdp:1: note: tidy makes it acceptable: NameMissing
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
{
  badOctet folder/a.sdp 4
  badOctet folder/deeper/c.sdp 4
  echo 'checked 4 bodies in 4 files: 2 refused'
} >refused
expect "a folder and a file" 1 refused nothing -- "$program" check folder good.sdp
echo 'sdpline: none: No such file or directory' >missing
echo 'checked 1 body in 1 file: none refused, 1 problem' >summary
expect "a file that is not there" 2 summary missing -- "$program" check none good.sdp
expect "a refused body and a missing file" 2 '~1 refused, 1 problem$' missing -- \
  "$program" check none bad.sdp
mkdir empty
echo 'checked 0 bodies in 0 files: none refused' >summary
expect "an empty folder" 0 summary nothing -- "$program" check empty
# A folder without permission to read between others; root can read it.
chmod 755 . folder folder/deeper
mkdir folder/closed && cp bad.sdp folder/closed && chmod 0 folder/closed
nobody=()
[ "$(id -u)" -ne 0 ] || nobody=(setpriv --reuid=65534 --regid=65534 --clear-groups)
{
  badOctet folder/a.sdp 4
  badOctet folder/deeper/c.sdp 4
  echo 'checked 3 bodies in 3 files: 2 refused, 1 problem'
} >refused
echo 'sdpline: folder/closed: Permission denied' >closed
if "${nobody[@]}" "$program" --version >/dev/null 2>&1; then # else the build folder is private
  expect "a closed folder costs only itself" 2 refused closed -- \
    "${nobody[@]}" "$program" check folder
  for command in "decode" "format" "encode"; do
    expect "$command names it too" 2 - '~^sdpline: folder/closed: Permission denied$' -- \
      "${nobody[@]}" "$program" $command folder
  done
  expect "diff too" 2 nothing '~^sdpline: folder/closed: Permission denied$' -- \
    "${nobody[@]}" "$program" diff folder good.sdp
fi
chmod 755 folder/closed && rm -r folder/closed
ln -s .. folder/deeper/up
sed -i '$s/.*/checked 3 bodies in 3 files: 2 refused/' refused
expect "links to folders are not followed" 1 refused nothing -- "$program" check folder
rm folder/deeper/up

# ---- Several bodies in one file
"$program" format good.sdp bad.sdp good.sdp folder/b.sdp >three 2>/dev/null
echo 'checked 3 bodies in 1 file: none refused' >summary
expect "what format writes" 0 summary nothing -- "$program" check three
{ cat good.sdp; echo; echo "not read"; echo; cat bad.sdp; } >between
{
  badOctet between 12
  echo 'checked 2 bodies in 1 file: 1 refused'
} >refused
echo 'sdpline: between:7: what follows an empty line in a body is not read' >unread
expect "text between bodies" 1 refused unread -- "$program" check between

# ---- Inputs without SDP
foreign() { # NAME MESSAGE BYTES
  printf "$3" >foreign
  printf 'sdpline: foreign: %s\n' "$2" >message
  echo 'checked 0 bodies in 0 files: none refused, 1 problem' >summary
  expect "$1" 2 summary message -- "$program" check foreign
}
if grep -q gzip <<<"$("$program" --version)"; then
  foreign "gzip" 'its gzip data ends too early' '\x1f\x8b\x08'
else
  foreign "gzip" 'it is compressed by gzip: unpack it, as "gzip -dc" does' '\x1f\x8b\x08'
fi
foreign "UTF-16" "it is UTF-16 text: convert it to UTF-8 or ASCII" 'v\0=\0000\0'
foreign "UTF-16 with its mark" "it is UTF-16 text: convert it to UTF-8 or ASCII" '\xff\xfev\0'
foreign "a byte order mark" "it begins with a byte order mark (EF BB BF): save it without one" \
  '\xef\xbb\xbfv=0\r\n'
foreign "quotation marks" "its lines begin with quotation marks (> ): remove them" \
  '> v=0\n> o=- 1 2 IN IP4 x\n'
foreign "quotes of quotes" "its lines begin with quotation marks (>>\\t): remove them" \
  '>>\tv=0\n'

# ---- Bytes that control a terminal
mkdir $'odd\033[1m'
cp bad.sdp $'odd\033[1m/\xc2\x9b31m.sdp'
cp good.sdp $'odd\033[1m/good'
message gzip good.sdp "c: application/sdp" $'e: \033[2Jx\xc2\x9b'
expect "names of files" 1 '~^odd.x1b.1m/.xc2.x9b31m.sdp:4:16: ' nothing -- \
  "$program" check $'odd\033[1m'
expect "names of files, decode" 1 - '~^odd.x1b.1m/.xc2.x9b31m.sdp:4:16: ' -- \
  "$program" decode $'odd\033[1m'
expect "names of files that are titles" 1 '~^# odd.x1b.1m/good:1$' - -- \
  "$program" decode $'odd\033[1m'
expect "JSON" 1 '~u001b.1m/.u009b31m.sdp' nothing -- "$program" check --json $'odd\033[1m'
expect "a header" 2 - '~is encoded as .x1b.2Jx.xc2.x9b$' -- "$program" check gzip
sed $'s/^s=.*/s=\x7f\xc2\x9b1m\r/' good.sdp >escape.sdp
expect "JSON of a body" 0 '~"name": ".u007f.u009b1m"' nothing -- \
  "$program" decode --json escape.sdp
for command in "check gzip" "check --json gzip bad.sdp" "decode --json escape.sdp" \
  "decode escape.sdp" "diff good.sdp escape.sdp" "diff --json good.sdp escape.sdp" \
  "check --every-line escape.sdp"; do
  "$program" $command >obeyed 2>&1
  expect "nothing to obey in $command" 1 nothing nothing -- \
    grep -aP '[\x00-\x09\x0b-\x1f\x7f]|\xc2[\x80-\x9f]' obeyed
done

# ---- Every line
session many.sdp '1 2 IN IP4 192.0.2.1' 1.2.3.256 <<'SDP'
a=ptime:20.5
f=1
a=sendrecv
m=audio 5004 RTP/AVP 0 x
a=rtpmap:97 AMR 8000
a=des:qos e2e sendrecv

a=after the end
SDP
cat >refused <<'TEXT'
many.sdp:4:16: error: expected an octet of at most 255; found "256" [ConnLastOctetRange]
    4 | c=IN IP4 1.2.3.256
      |                ^
many.sdp:6:11: error: unexpected text after the number; found ".5" [PacketEnd] (line checked by itself)
    6 | a=ptime:20.5
      |           ^
many.sdp:7:1: error: no line of SDP begins like this [LineKind] (line checked by itself)
    7 | f=1
      | ^
many.sdp:9:24: error: expected a payload number; found "x" [Payload] (line checked by itself)
    9 | m=audio 5004 RTP/AVP 0 x
      |                        ^
many.sdp:10:21: error: expected "/" after the encoding name; found the line end [RtpmapSlash] (line checked by itself)
   10 | a=rtpmap:97 AMR 8000
      |                     ^
  hint: the line is a=rtpmap:PAYLOAD NAME/CLOCK-RATE or .../CHANNELS
many.sdp:11:11: error: expected mandatory, optional, none, failure or unknown as the strength; found "e2e" [StrengthWord] (line checked by itself)
   11 | a=des:qos e2e sendrecv
      |           ^
checked 1 body in 1 file: 1 refused
TEXT
echo 'sdpline: many.sdp:13: what follows an empty line in a body is not read' >unread
expect "--every-line" 1 refused unread -- "$program" check --every-line many.sdp
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
avpf.sdp:4:1: error: unexpected line after the s= line; found "s=" [AfterName]
    4 | s=twice
      | ^
  hint: the lines of a session come in the order v= o= s= i= u= e= p= c= b= t= r= z= k= a= m=
avpf.sdp:1: note: tidy makes it acceptable: LineAgain
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
      "diagnostics": [],
      "warnings": [],
      "tidy": null
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
          "sentence": "expected an octet of at most 255",
          "class": "FIELD_SYNTAX",
          "source": "sdpparser",
          "function": "sdpConnectionFieldAddrIpv4",
          "token": 3,
          "alone": false,
          "text": "c=IN IP4 1.2.3.256",
          "found": "\"256\"",
          "severity": "error"
        }
      ],
      "warnings": [],
      "tidy": null
    }
  ],
  "problems": [
    "none: No such file or directory"
  ],
  "summary": {
    "files": 2,
    "bodies": 2,
    "refused": 1,
    "warnings": 0,
    "problems": 1,
    "ignored": 0,
    "omitted": 0
  }
}
JSON
expect "--json" 2 json missing -- "$program" check --json good.sdp none bad.sdp
expect "--json --every-line" 1 '~"alone": true' unread -- \
  "$program" check --json --every-line many.sdp
expect "--json without a place" 1 '~"line": null' nothing -- "$program" check --json nothing
# ---- Bytes that control a terminal are escaped where a message quotes the command line
code=$(printf '\033[31m\302\233\177')
expect "a control code in an option" 2 nothing '~^sdpline check: --max-body: Value \\x1b\[31m\\xc2\\x9b\\x7f not in' -- \
  "$program" check --max-body "$code" good.sdp
expect "a control code in an operand" 2 nothing '~unexpected argument "--x\\x1b\[31m' -- \
  "$program" explain 1 "--x$code"

finish
