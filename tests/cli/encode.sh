#!/usr/bin/env bash
# sdpline encode: from the JSON of decode it writes the same bytes as format.
. "$(dirname "$0")/expect.sh"

"$program" decode --json good.sdp >good.json
expect "a file" 0 good.sdp nothing -- "$program" encode good.json
expect "standard input" 0 good.sdp nothing -- sh -c '"$1" encode <good.json' _ "$program"
{ cat good.sdp; printf '\r\n'; cat good.sdp; } >two.sdp
cat good.json good.json >two.json
expect "two documents" 0 two.sdp nothing -- "$program" encode two.json
expect "two files" 0 two.sdp nothing -- "$program" encode good.json good.json
{ echo '['; cat good.json; echo ,; cat good.json; echo ']'; } >array.json
expect "an array of documents" 0 two.sdp nothing -- "$program" encode array.json

# ---- Round trips
printf 'v=0\no=\xff\xc3\xa9 1 2 IN IP6 h\ns=\x01\t"\\\xed\xa0\x80\ni=%s\nt=1 2\nr=7d 1h 0 25h\n' \
  '\u0000 {"hex"}' >bytes.sdp
file media.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
e=a@b
e=c@d
c=IN IP6 2001:db8::9/5/2
b=AS:1
t=0 0
z=0 1h
k=prompt
m=audio 0 RTP/AVP
m=text 5006/2 RTP/AVPF 98
i=info
c=IN IP4 224.2.1.1/127
k=clear:x
a=rtpmap:98 t140/1000
a=curr:bw e2e none
a=des:qos failure remote recv
a=silenceSupp:off - - - -
a=ecan:f on x
a=ipbcp:1 Request
a=x-y:z
a=flag
m=image 5000 udptl t38
a=T38FaxFillBitRemoval
a=T38FaxTranscodingMMR:0
a=T38FaxRateManagement:localTCF
m=application 5002 TCP t120
a=setup:passive
SDP
for body in bytes.sdp media.sdp "$source/examples/offer.sip"; do
  for options in "--t38 2" "--t38 2 --line-end cr" "--t38 2 --line-end lf"; do
    for avpf in "" --avpf; do
      "$program" format $options $avpf "$body" >formatted || echo "format of $body fails"
      expect "$body, $options $avpf" 0 formatted nothing -- \
        sh -c '"$1" decode --json $2 "$3" | "$1" encode $4' _ "$program" "$avpf" "$body" "$options"
    done
  done
done
expect "bytes that are not UTF-8" 0 '~"userName": \{' nothing -- "$program" decode --json bytes.sdp
expect "their digits" 0 '~"hex": "ffc3a9"' nothing -- "$program" decode --json bytes.sdp

sed -i '/T38FaxTranscodingMMR/d' media.sdp
for options in "" "--line-end cr" "--t38 1 --line-end lf"; do
  "$program" format $options media.sdp >formatted || echo "format fails"
  expect "flags that are set, $options" 0 formatted nothing -- \
    sh -c '"$1" decode --json media.sdp | "$1" encode $2' _ "$program" "$options"
done
sed 's/T38FaxFillBitRemoval/&:0/' media.sdp >flag.sdp
"$program" decode --json flag.sdp >flag.json
expect "a flag that is not set" 0 '~^a=T38FaxFillBitRemoval:0' nothing -- "$program" encode flag.json

# ---- Inputs that describe no body
refuse() { # NAME MESSAGE TEXT [OUTPUT]
  printf '%s' "$3" >refused.json
  printf 'sdpline: refused.json%s\n' "$2" >message
  local status=1
  [[ $2 != *"parse error"* && $2 != *"no JSON"* ]] || status=2
  expect "$1" $status "${4:-nothing}" message -- "$program" encode refused.json
}
refuse "nothing at all" ": holds no JSON document" ""
refuse "an array of numbers" ": /: expected an object, found 1" "[1]"
refuse "no JSON" ": parse error at line 1, column 1: syntax error while parsing value - \
invalid literal; last read: 'v'" 'v=0'
refuse "an object that ends early" ": parse error at line 1, column 13: syntax error while parsing \
object - unexpected end of input; expected '}'" '{"version":0'
refuse "an empty object" ": /version: missing" '{}'
refuse "the second of two documents" " (document 2): /: expected an object, found 2" "$(cat good.json) 2" good.sdp
refuse "rubbish after a document" " (document 2): parse error at line 1, column 1: syntax error \
while parsing value - invalid literal; last read: 'x'" "$(cat good.json)x" good.sdp
refuse "a number too great" ": /version: expected a number from 0 to 4294967295, found 1.2345678901234568e+29" \
  '{"version": 123456789012345678901234567890}'
refuse "a line break in a value" ": /name: expected a text of one line, found a line feed or a NUL in it" \
  "$(sed 's/"name": "-"/"name": "-\\na=x"/' good.json)"
refuse "an empty name" ': line 3, "s=": would be refused: '"$(
  sed 's/^s=.*/s=\r/' good.sdp >empty.sdp
  "$program" check --json empty.sdp | sed -n 's/.*"sentence": "\(.*\)",/\1/p' | tr -d '\\')" \
  "$(sed 's/"name": "-"/"name": ""/' good.json)"
"$program" encode --t38 1 flag.json >out 2>message
expect "a flag that the style loses" 1 nothing '~^sdpline: flag.json: /media/2/attributes/0' -- \
  "$program" encode --t38 1 flag.json
refuse "a second time" ": /times/1: would be lost" \
  "$(sed 's/"times": \[/&{"start":1,"stop":2},/' good.json | tr -d '\n' | sed 's/"start": *0/"start": 3/')"
refuse "an unknown field" ': /: unexpected field "colour"' \
  "$(sed 's/"version": 0/"version": 0, "colour": 1/' good.json)"
refuse "an unknown field that a terminal would obey" ': /: unexpected field "\x1b[1m"' \
  "$(sed 's/"version": 0/"version": 0, "\\u001b[1m": 1/' good.json)"
head -c 500000 /dev/zero | tr '\0' '[' >deep.json
expect "half a million brackets" 2 nothing '~parse error at line 1, column 500001' -- \
  "$program" encode deep.json
{ head -c 500000 /dev/zero | tr '\0' '['; head -c 500000 /dev/zero | tr '\0' ']'; } >deep.json
expect "half a million brackets, closed" 1 nothing '~/: expected an object, found an array' -- "$program" encode deep.json
expect "a file that is not there" 2 good.sdp '~^sdpline: none.json: No such file' -- \
  "$program" encode none.json good.json
finish
