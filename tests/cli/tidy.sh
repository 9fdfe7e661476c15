#!/usr/bin/env bash
# sdpline tidy, the warnings and notes of check, and --tidy of the other commands
. "$(dirname "$0")/expect.sh"

file untidy.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=
t=0 0
m=audio 5004  RTP/AVP 0
SDP
file tidied.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
t=0 0
m=audio 5004 RTP/AVP 0
SDP
cat >report <<'TEXT'
untidy.sdp:3:3: repaired: s= is empty: wrote s=- [NameEmpty, RFC 4566 5.3]
untidy.sdp:5:13: repaired: white space other than one blank between fields: wrote one blank, or none where none belongs [SpaceRun, RFC 4566 5]
TEXT

# ---- One body
expect "an accepted body" 0 good.sdp nothing -- "$program" tidy good.sdp
expect "a repaired body" 1 tidied.sdp report -- "$program" tidy untidy.sdp
expect "twice" 0 tidied.sdp nothing -- "$program" tidy tidied.sdp
expect "standard input" 1 tidied.sdp '~^standard input:3:3: repaired' -- \
  sh -c '"$1" tidy <untidy.sdp' _ "$program"
expect "a refused body" 2 bad.sdp '~^bad.sdp:4:16: expected an octet' -- "$program" tidy bad.sdp
sed 's/^s=.*/s=\r/' bad.sdp >worse.sdp
expect "what was tried" 2 worse.sdp '~^worse.sdp:3:3: tried: s= is empty' -- "$program" tidy worse.sdp
expect "a file that is not there" 2 nothing '~^sdpline: none.sdp: ' -- "$program" tidy none.sdp
expect "--dry-run" 1 nothing report -- "$program" tidy --dry-run untidy.sdp
mkdir -p folder/deeper && cp untidy.sdp folder/deeper/b.sdp && cp untidy.sdp folder/a.sdp
sed 's|^untidy|folder/a|; p; s|^folder/a|folder/deeper/b|' report | sort >twice
expect "a folder" 1 nothing - -- sh -c '"$1" tidy --dry-run folder 2>told' _ "$program"
expect "each file of it" 0 twice nothing -- sort told
expect "a folder in place" 1 nothing - -- "$program" tidy -i folder
expect "and again" 0 - nothing -- "$program" tidy --dry-run folder

# ---- Rules
sed 's/^s=.*/s=-\r/' untidy.sdp >half.sdp
expect "one rule" 2 untidy.sdp '~tried: s= is empty' -- "$program" tidy --rule NameEmpty untidy.sdp
expect "two rules" 1 tidied.sdp report -- "$program" tidy --rule nameempty,SpaceRun untidy.sdp
expect "a rule twice" 1 tidied.sdp report -- \
  "$program" tidy --rule NameEmpty --rule SpaceRun untidy.sdp
expect "--without" 2 half.sdp - -- "$program" tidy --without SpaceRun half.sdp
expect "a rule that is none" 2 nothing '~no repair is named "Nothing"' -- \
  "$program" tidy --rule Nothing untidy.sdp
expect "a doubt for a rule" 2 nothing '~no repair is named "PortRange"' -- \
  "$program" tidy --rule PortRange untidy.sdp
{ cat tidied.sdp; printf 'y=1\r\n'; } >odd.sdp
{ cat tidied.sdp; printf 'a=x-line:y=1\r\n'; } >even.sdp
expect "without --optional" 2 odd.sdp - -- "$program" tidy odd.sdp
expect "--optional" 1 even.sdp '~LineUnknown' -- "$program" tidy --optional odd.sdp

# ---- Lines after an empty one
sed 's/^s=.*/\r\n&/' tidied.sdp >apart.sdp
expect "an empty line" 2 apart.sdp '~^sdpline: apart.sdp:4: what follows' -- "$program" tidy apart.sdp
expect "an empty line, --optional" 1 tidied.sdp '~^apart.sdp:3:1: repaired: an empty line' -- \
  "$program" tidy --optional apart.sdp
"$program" tidy --optional apart.sdp 2>&1 >/dev/null | grep -c . >lines
expect "no note of what is read" 0 '~^1$' nothing -- cat lines
sed 's/^m=.*/\r\n&/' tidied.sdp >ended.sdp
expect "lines that are not read" 0 '~^ended.sdp:6:1: warning: text after an empty line' - -- \
  "$program" check ended.sdp

# ---- Messages, in place
message untidy.sip untidy.sdp
message tidied.sip tidied.sdp
expect "a SIP message" 1 tidied.sip '~^untidy.sip:8:3: repaired: s= is empty' -- \
  "$program" tidy untidy.sip
cat untidy.sip untidy.sip | sed 's/Content-Length/l/' >two.sip
cat tidied.sip tidied.sip | sed 's/Content-Length/l/' >two.tidied
expect "two messages, the short name of the header" 1 two.tidied - -- "$program" tidy two.sip
tr -d '\r' <untidy.sip >feeds.sip
tr -d '\r' <tidied.sip >feeds.tidied
expect "a length that counts carriage returns" 1 feeds.tidied - -- "$program" tidy feeds.sip
cp untidy.sip changed.sip
expect "--in-place" 1 nothing '~changed.sip:8:3' -- "$program" tidy -i changed.sip
expect "the file" 0 tidied.sip nothing -- cat changed.sip
expect "--in-place again" 0 nothing nothing -- "$program" tidy --in-place changed.sip
expect "--in-place of standard input" 2 nothing '~standard input' -- "$program" tidy -i -

# ---- JSON, masks
expect "--json" 1 '~"rule": "NameEmpty"' nothing -- "$program" tidy --json untidy.sdp
expect "the outcome" 1 '~"outcome": "repaired"' nothing -- "$program" tidy --json untidy.sdp
expect "--json of a refused body" 2 '~"check": "ConnLastOctetRange"' nothing -- \
  "$program" tidy --json bad.sdp
"$program" tidy --redact untidy.sip >masked 2>/dev/null
expect "no address in what is masked" 1 nothing nothing -- grep -F -e 192.0.2.1 -e example.com masked
expect "the rest of it" 0 '~^m=audio 5004 RTP/AVP 0' nothing -- cat masked

# ---- The summary of many inputs
mkdir many && cp untidy.sdp odd.sdp bad.sdp worse.sdp many
cp good.sdp many/a.sdp && cp untidy.sdp many/b.sdp
cat >summary <<'TEXT'
      2 repaired: s= is empty: wrote s=- [NameEmpty, RFC 4566 5.3], first at many/b.sdp:3:3
      2 repaired: white space other than one blank between fields: wrote one blank, or none where none belongs [SpaceRun, RFC 4566 5], first at many/b.sdp:5:13
      1 tried: s= is empty: wrote s=- [NameEmpty, RFC 4566 5.3], first at many/worse.sdp:3:3
      2 refused: expected an octet of at most 255 [ConnLastOctetRange], first at many/bad.sdp:4:16
      1 refused: unexpected line after the m= line [AfterMediaLine], first at many/odd.sdp:6:1
tidied 6 bodies in 6 files: 1 unchanged, 2 repaired, 3 refused
TEXT
expect "--summary" 2 summary nothing -- "$program" tidy --summary many
expect "--summary --json" 2 '~"unchanged": 1' nothing -- "$program" tidy --summary --json many
expect "what it repaired" 2 '~"rule": "SpaceRun"' nothing -- "$program" tidy --summary --json many
expect "what is left" 2 '~"check": "AfterMediaLine"' nothing -- "$program" tidy --summary --json many
expect "the files are as they were" 0 nothing nothing -- cmp untidy.sdp many/b.sdp
cp untidy.sdp both.sdp
expect "--json -i" 1 '~"outcome": "repaired"' nothing -- "$program" tidy --json -i both.sdp
expect "the file of it" 0 tidied.sdp nothing -- cat both.sdp
cp untidy.sdp both.sdp
expect "--dry-run -i" 1 nothing - -- "$program" tidy --dry-run -i both.sdp
expect "is left alone" 0 untidy.sdp nothing -- cat both.sdp
expect "-i of what is masked" 2 nothing '~--redact' -- "$program" tidy -i --redact both.sdp
expect "a rule of --without that is none" 2 nothing '~no repair is named "Nix"' -- \
  "$program" tidy --without Nix untidy.sdp
expect "--optional, and one by name" 1 '~^m=' '~\[KeySpace' -- \
  sh -c 'sed "s/^t=/t= /" odd.sdp >key.sdp; "$1" tidy --optional --rule KeySpace key.sdp' _ "$program"

# ---- The decoder's options
file offer.sdp <<'SDP'
v=0
o=- 1 2 IN IP4 192.0.2.1
s=-
t=0 0
m=audio 9 UDP/TLS/RTP/SAVPF 111 63
SDP
expect "--rtp-family" 0 offer.sdp nothing -- "$program" tidy --rtp-family offer.sdp
for command in decode format check; do
  expect "$command without --rtp-family" 1 - - -- "$program" "$command" offer.sdp
  expect "$command --rtp-family" 0 - nothing -- "$program" "$command" --rtp-family offer.sdp
done
expect "diff --rtp-family" 0 nothing nothing -- "$program" diff --rtp-family offer.sdp offer.sdp
{ cat good.sdp; yes "a=x:$(printf 'y%.0s' {1..95})" | head -n 50 | sed 's/$/\r/'; } >long.sdp
expect "a long body" 1 '~more than 4093' nothing -- "$program" check long.sdp
expect "--max-body" 0 - nothing -- "$program" check --max-body 65535 long.sdp
expect "format --max-body" 0 long.sdp nothing -- "$program" format --max-body 65535 long.sdp
expect "--max-body out of range" 2 nothing '~--max-body' -- "$program" check --max-body 65536 good.sdp

# ---- --tidy of the other commands
expect "format --tidy" 0 tidied.sdp report -- "$program" format --tidy untidy.sdp
expect "decode --tidy" 0 '~^name "-"' report -- "$program" decode --tidy untidy.sdp
expect "diff --tidy" 0 nothing report -- "$program" diff --tidy untidy.sdp tidied.sdp
expect "format --tidy of a refused body" 1 nothing '~^bad.sdp:4:16: ' -- "$program" format --tidy bad.sdp

# ---- check
cat >noted <<'TEXT'
untidy.sdp:1: note: tidy makes it acceptable: NameEmpty, SpaceRun
TEXT
"$program" check untidy.sdp | grep note: >got
expect "what would make it acceptable" 0 noted nothing -- cat got
"$program" check bad.sdp | grep note: >got
expect "nothing would" 0 nothing nothing -- cat got
sed 's/5004/70000/' tidied.sdp >doubtful.sdp
cat >warned <<'TEXT'
doubtful.sdp:5:9: warning: a port above 65535: it is kept modulo 2^32; others cut it to 16 bits [PortRange, RFC 4566 5.14]
checked 1 body in 1 file: none refused, 1 warning
TEXT
echo 'checked 1 body in 1 file: none refused' >silent
expect "a warning" 0 warned nothing -- "$program" check doubtful.sdp
expect "--no-warnings" 0 silent nothing -- "$program" check --no-warnings doubtful.sdp
expect "--warnings-as-errors" 1 warned nothing -- "$program" check --warnings-as-errors doubtful.sdp
expect "a warning in JSON" 0 '~"rule": "PortRange"' nothing -- "$program" check --json doubtful.sdp

# ---- The list of rules, and the documents of repairs and doubts
expect "rules" 0 '~^  NameEmpty: s= is empty: wrote s=- \[RFC 4566 5.3\], repairs.md#nameempty$' nothing -- \
  "$program" rules
expect "rules, a doubt" 0 '~^  PortRange: .*\], doubts.md#portrange$' nothing -- "$program" rules
"$program" rules --json | sed -n 's/^    "page": "\(.*\)#\(.*\)",/\1 \2/p' | sort >pages
for page in repairs doubts; do
  sed -n "s/^##*# *\([A-Z][A-Za-z]*\)$/$page.md \1/p" "$source/docs/$page.md"
done | tr '[:upper:]' '[:lower:]' | grep -vx "repairs.md optional" | sort >anchors
expect "the page of each rule has its section" 0 pages nothing -- cat anchors
"$program" rules --json | sed -n 's/^    "name": "\(.*\)",/\1/p' | sort >names
expect "rules --json" 0 '~^CrInside$' nothing -- cat names
sed -n 's/^##*# \([A-Z][A-Za-z]*\)$/\1/p' "$source/docs/repairs.md" "$source/docs/doubts.md" |
  grep -vxF Optional | sort >paged
expect "a page's section for each rule" 0 names nothing -- cat paged
finish
