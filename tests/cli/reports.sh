#!/usr/bin/env bash
# The reports of sdpline check, parsed by the JSON and XML parsers of Python. Without python3 the
# test is skipped.
if ! command -v python3 >/dev/null; then
  echo "no python3 here"
  exit 77
fi
. "$(dirname "$0")/expect.sh"
reader=$source/tests/cli/reports.py
# reads FORMAT STATUS OPTIONS...: check exits with that status, and reports.py prints the contents
# of its report as lines that do not depend on the format.
reads() {
  local format=$1 status=$2
  shift 2
  "$program" check --format "$format" "$@" >report 2>errors
  [ $? -eq "$status" ] || echo "a wrong status"
  python3 -IS "$reader" "$format" report
}
formats="json jsonl gcc junit sarif"

# Bytes that each format must escape: control characters of ASCII and Latin-1, bytes that are not
# UTF-8, characters that XML does not allow, markup, quotes and backslashes.
nasty=$'<b>&amp;"\'\\\x01\x1b[1m\xc2\x9b\xff\xed\xa0\x80\xef\xbf\xbe\xef\xbf\xbf]]>--\t'
{ printf 'v=0\r\no=- 1 2 IN IP4 x\r\ns=-\r\nt=0 0\r\na=ptime:'; printf '%s\r\n' "$nasty"; } >nasty.sdp
sed 's/^a=.*/m=audio 65536 RTP\/AVP 0\r/' good.sdp >doubt.sdp
doubt=PortRange
file head <<'TEXT'
INVITE sip:bob@example.com SIP/2.0
Via: SIP/2.0/UDP pc.example.com
From: "A" <sip:alice@example.com>;tag=1
Call-ID: 3c26<&>@192.0.2.9
CSeq: 7 INVITE
Content-Type: application/sdp

TEXT
cat head bad.sdp >call.sip
mkdir -p $'fold er/<&>"\xff\x1b%'
cp bad.sdp $'fold er/<&>"\xff\x1b%/a b.sdp'
cp good.sdp "fold er/good.sdp"

# file:line:column of the input, severity, name, and whether there is a hint.
cat >known <<'TEXT'
bad.sdp 4:16 error ConnLastOctetRange
call.sip 11:16 error ConnLastOctetRange
doubt.sdp 5:9 warning PortRange
nasty.sdp 5:9 error PacketNumber
TEXT
for format in $formats; do
  expect "$format: every diagnostic at its place" 0 known nothing -- \
    reads $format 1 bad.sdp call.sip doubt.sdp good.sdp nasty.sdp
  expect "$format: nothing that a terminal obeys" 1 nothing nothing -- \
    grep -aP '[\x00-\x09\x0b-\x1f\x7f]|\xc2[\x80-\x9f]' report
  expect "$format: it is UTF-8" 0 - nothing -- iconv -f UTF-8 -t UTF-8 report
  expect "$format: the call is told" 0 - nothing -- \
    grep -E '3c26(<&>|&lt;&amp;&gt;)@192.0.2.9.*7 INVITE|3c26<&>@192.0.2.9' report
  expect "$format: standard input" 0 - nothing -- \
    sh -c '"$1" check --format $2 <bad.sdp >report; test $? = 1 && python3 -IS "$3" $2 report |
      grep -E "^(-|<stdin>|standard input|stdin) 4:16 error ConnLastOctetRange$"' \
    _ "$program" $format "$reader"
done

# In a capture the position is the packet, and the line and column within its body.
cp "$source/examples/calls.pcap" .
echo 'calls.pcap 4:17 error ConnLastOctetRange' >known
for format in $formats; do
  expect "$format: a capture" 0 known nothing -- reads $format 1 calls.pcap
  for part in 'frame"?:? ?8\b' '2023-11-14T22:13:20.140000000Z' '"?10.0.0.1\b.*\b10.0.0.2\b' \
    'INVITE' 'refused@10.0.0.1' '\b1 INVITE'; do
    expect "$format: $part" 0 - nothing -- sh -c 'tr -d "\n" <report | grep -E "$1"' _ "$part"
  done
done
"$program" check --format junit calls.pcap >report
expect "junit: no line of a capture" 1 nothing nothing -- grep -E ' line="|body at line' report

# Folders, names of files with bytes of all kinds, and files that are missing.
for format in $formats; do
  reads $format 2 "fold er" none >got
  expect "$format: a folder" 0 - nothing -- grep -E '^fold er/.* 4:16 error ConnLastOctetRange$' got
  expect "$format: a missing file" 0 - nothing -- grep -x 'none problem' got
done
"$program" check --format sarif "fold er" |
  python3 -c 'import json, sys, urllib.parse
uri = json.load(sys.stdin)["runs"][0]["results"][0]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"]
sys.stdout.buffer.write(urllib.parse.unquote_to_bytes(uri) + b"\n")' >got
printf 'fold er/<&>"\xff\x1b%%/a b.sdp\n' >known
expect "sarif: the URI is that of the file" 0 known nothing -- cat got
for format in json jsonl junit sarif; do
  expect "$format: problems are on standard error too" 2 - '~^sdpline: none: No such file' -- \
    "$program" check --format $format none
done
expect "gcc: problems are on standard output alone" 2 '~^none:1:1: error: No such file' nothing -- \
  "$program" check --format gcc none
message long.sip bad.sdp
sed -i 's/^Content-Length: .*/Content-Length: 9999\r/' long.sip
for format in $formats; do
  reads $format 1 long.sip >got
  expect "$format: a message that contradicts itself" 0 - nothing -- grep -E '^long.sip problem$' got
done

# ---- Redaction
{ cat head; sed 's/^s=.*/s=bob@example.com 10.1.2.3\r/; s/^c=.*/c=IN IP4 10.1.2.3 x\r/' bad.sdp; } >private.sip
for format in text $formats; do
  "$program" check --redact --format $format --every-line private.sip >report 2>&1
  expect "$format: something is reported" 0 - nothing -- grep -q ConnEnd report
  expect "$format: nothing private is left" 1 nothing nothing -- \
    grep -aE '10\.1\.2\.3|bob|alice|3c26|192\.0\.2\.[19]|pc\.example' report
done

# ---- Ignored names
for format in json jsonl gcc junit sarif; do
  : >known
  expect "$format: --ignore" 0 known nothing -- \
    reads $format 0 --ignore connlastoctetrange,packetnumber --ignore "$doubt" \
    bad.sdp doubt.sdp nasty.sdp
  echo 'bad.sdp 4:16 error ConnLastOctetRange' >known
  expect "$format: --max-diagnostics" 0 known nothing -- \
    reads $format 1 --max-diagnostics 1 bad.sdp nasty.sdp doubt.sdp
  expect "$format: it says how many are left out" 0 - nothing -- \
    grep -E '"omitted": ?2|2 more diagnostics are left out' report
done
"$program" check --format junit --ignore ConnLastOctetRange bad.sdp >report
expect "junit: ignored is skipped" 0 - nothing -- \
  grep -F '<skipped message="ignored: ConnLastOctetRange"/>' report
"$program" check --format junit --max-diagnostics 1 bad.sdp nasty.sdp >report
expect "junit: what is left out failed all the same" 0 - nothing -- \
  grep -F '<testsuite name="nasty.sdp" tests="1" failures="1" errors="0" skipped="0">' report
"$program" check --format junit doubt.sdp >report
expect "junit: a warning is no failure" 0 - nothing -- grep -F 'failures="0"' report
"$program" check --format junit --warnings-as-errors doubt.sdp >report
expect "junit: as an error it is" 0 - nothing -- grep -F "type=\"$doubt\"" report
cat >list <<TEXT
# known faults
ConnLastOctetRange   # of the old gateway

  packetNUMBER
TEXT
echo 'checked 2 bodies in 2 files: none refused, 2 ignored' >summary
expect "--ignore-file" 0 summary nothing -- "$program" check --ignore-file list bad.sdp nasty.sdp
cat >summary <<'TEXT'
checked 2 bodies in 2 files: 1 refused, 1 ignored
TEXT
"$program" check --ignore-file list --every-line bad.sdp nasty.sdp >out
expect "--ignore-file and --every-line" 0 - nothing -- grep -q ignored out
echo 'sdpline: list2:2: no check or doubt is named "Bad\x01": see sdpline explain --list and sdpline rules' >err
printf 'ConnEnd\nBad\x01\n' >list2
expect "a wrong name in a list" 2 nothing err -- "$program" check --ignore-file list2 bad.sdp
expect "a wrong name" 2 nothing '~no check or doubt is named "NameEmpty"' -- \
  "$program" check --ignore NameEmpty bad.sdp
expect "a missing list" 2 nothing '~^sdpline: none: No such file or directory$' -- \
  "$program" check --ignore-file none bad.sdp
expect "a folder as a list" 2 nothing '~^sdpline: fold er: Is a directory$' -- \
  "$program" check --ignore-file "fold er" bad.sdp
cat >refused <<'TEXT'
bad.sdp:4:16: error: expected an octet of at most 255; found "256" [ConnLastOctetRange]
    4 | c=IN IP4 1.2.3.256
      |                ^
1 more diagnostic is left out
TEXT
expect "--quiet has no summary" 1 refused nothing -- \
  "$program" check --quiet --max-diagnostics 1 bad.sdp nasty.sdp
{ cat good.sdp; echo; echo "not read"; } >noted
expect "--quiet has no notes" 0 nothing nothing -- "$program" check -q noted
expect "without it there are" 0 - '~what follows an empty line' -- "$program" check noted
expect "--quiet tells what cannot be read" 2 nothing '~^sdpline: none: No such' -- \
  "$program" check --quiet none
expect "gcc has the notes" 0 '~^noted:7:1: note: what follows' nothing -- \
  "$program" check --format gcc noted

# ---- Counts
cat >summary <<'TEXT'
      2 error: expected an octet of at most 255 [ConnLastOctetRange], first at bad.sdp:4:16
      1 error: expected a number as the attribute's value [PacketNumber], first at nasty.sdp:5:9
checked 4 bodies in 4 files: 3 refused
TEXT
expect "--summary" 1 summary nothing -- \
  "$program" check --summary --max-diagnostics 1 bad.sdp nasty.sdp good.sdp call.sip
cat >counts <<'TEXT'
2 ConnLastOctetRange bad.sdp:4:16
1 PacketNumber nasty.sdp:5:9
TEXT
for format in json jsonl; do
  "$program" check --summary --format $format bad.sdp nasty.sdp good.sdp call.sip >report
  expect "$format --summary" 0 counts nothing -- python3 -c 'import json, sys
documents = [json.loads(line) for line in open("report")] if sys.argv[1] == "jsonl" else None
checks = [d for d in documents if d["type"] == "check"] if documents else json.load(open("report"))["checks"]
for c in checks: print(c["count"], c["name"], c["first"])' $format
done
for format in gcc junit sarif; do
  expect "no --summary with $format" 2 nothing '~--summary' -- \
    "$program" check --summary --format $format bad.sdp
done
expect "--json with another format" 2 nothing '~--json' -- \
  "$program" check --json --format gcc bad.sdp
"$program" check --json bad.sdp >known
expect "--json is --format json" 1 known nothing -- "$program" check --format json bad.sdp
expect "an unknown format" 2 nothing '~--format: yaml not in' -- \
  "$program" check --format yaml bad.sdp

# ---- Colour without a terminal
expect "--color=always" 1 $'~^\033\\[1mbad.sdp:4:16: ' nothing -- \
  env NO_COLOR=1 "$program" check --color=always bad.sdp
expect "gcc has colour too" 1 $'~\033\\[1;31merror: ' nothing -- \
  "$program" check --color always --format gcc bad.sdp
"$program" check --format json bad.sdp >known
expect "JSON has none" 1 known nothing -- "$program" check --color=always --format json bad.sdp
sed 's/ptime:20/ptime:30/' good.sdp >other.sdp
expect "diff --color=always" 1 $'~^\033' nothing -- "$program" diff --color=always good.sdp other.sdp
expect "--color=sometimes" 2 nothing '~--color: sometimes not in' -- \
  "$program" check --color=sometimes bad.sdp

# A test suite is counted before it is written, whatever its size: 2,000 bodies in one file.
body=$(<bad.sdp)
for i in {1..2000}; do printf '%s\n\r\n' "$body"; done >large.sdp
reads junit 1 large.sdp >got
expect "junit: a suite that is larger than what is kept in memory" 0 - nothing -- \
  grep -cx 'large.sdp [0-9]*:16 error ConnLastOctetRange' got
expect "junit: none is missing" 0 - nothing -- [ "$(wc -l <got)" -eq 2000 ]
finish
