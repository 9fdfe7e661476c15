#!/usr/bin/env bash
# The offers and answers of calls: calls.sh PROGRAM SOURCE_DIR MAKECAPTURE
makecapture=$3
. "$(dirname "$0")/expect.sh"
"$makecapture" calls >calls.pcap
"$makecapture" transports >transports.pcap

cmp calls.pcap "$source/examples/calls.pcap" ||
  { failures=$((failures + 1)); echo "examples/calls.pcap is not what makecapture calls writes"; }

a='sip:alice@10.0.0.1' b='sip:bob@10.0.0.2'
cat >lines <<TEXT
Call-ID good@10.0.0.1 ($a > $b, 7 messages): 1 offer, 1 answer: nothing wrong
Call-ID refused@10.0.0.1 ($a > $b, 3 messages): error: frame 8: the body is refused: line 4: expected an octet of at most 255 [ConnLastOctetRange], and 1 more
Call-ID lines@10.0.0.1 ($a > $b, 3 messages): error: frame 12: stream 2: an m= line of the offer has none in the answer [StreamMissing, RFC 3264 6]
Call-ID codec@10.0.0.1 ($a > $b, 6 messages): error: frame 17: the description changed and its version did not [VersionNotRaised, RFC 3264 8], and 2 more
Call-ID common@10.0.0.1 ($a > $b, 3 messages): error: frame 21: stream 1: no format of the offer is accepted [AnswerNoCommonFormat, RFC 3264 6.1], and 1 more
Call-ID hold@10.0.0.1 ($a > $b, 3 messages): error: frame 24: no media in either direction: both sides hold [BothHold, RFC 3264 8.4]
6 calls, 5 with something wrong
TEXT
expect "one line a call" 1 lines nothing -- "$program" calls calls.pcap
expect "a good call by every transport" 0 '~^5 calls, 0 with something wrong$' nothing -- \
  "$program" calls transports.pcap
expect "one call" 0 '~^1 call, 0 with' nothing -- "$program" calls --call-id good@10.0.0.1 calls.pcap

cat >ladder <<TEXT
Call-ID lines@10.0.0.1 ($a > $b, 3 messages): error: frame 12: stream 2: an m= line of the offer has none in the answer [StreamMissing, RFC 3264 6]
          10.0.0.1                          10.0.0.2
    0.000 |------- INVITE (offer 1) ------->|  frame 11
    0.020 |<------ 200 OK (answer 1) -------|  frame 12
          error: stream 2: an m= line of the offer has none in the answer [StreamMissing, RFC 3264 6]
    0.040 |-------------- ACK ------------->|  frame 13

1 call, 1 with something wrong
TEXT
expect "a ladder" 1 ladder nothing -- "$program" calls --verbose --call-id lines@10.0.0.1 calls.pcap

# ---- Texts of messages
call() { # the messages of a call on standard output: FIRSTLINE|TAGS|CSEQ|BODY on standard input
  while IFS='|' read -r first from to cseq body; do
    printf '%s\r\nf: <sip:a@x>;tag=%s\r\nt: <sip:b@y>%s\r\ni: id\r\nCSeq: %s\r\n' "$first" "$from" \
      "${to:+;tag=$to}" "$cseq"
    [ -z "$body" ] || printf 'c: application/sdp\r\n'
    printf 'l: %d\r\n\r\n' "$([ -z "$body" ] && echo 0 || wc -c <"$body")"
    [ -z "$body" ] || cat "$body"
  done
}
body() { # VERSION HOST MEDIA
  printf 'v=0\r\no=- 1 %s IN IP4 %s\r\ns=-\r\nc=IN IP4 %s\r\nt=0 0\r\nm=%s\r\n' "$1" "$2" "$2" "$3"
}
body 1 192.0.2.1 'audio 5004 RTP/AVP 0' >offer
body 1 192.0.2.2 'audio 5006 RTP/AVP 0' >answer
body 2 192.0.2.1 'audio 5004 RTP/AVP 0 8' >second
body 3 192.0.2.1 'audio 5004 RTP/AVP 0 8' >third
body 2 192.0.2.2 'audio 5006 RTP/AVP 0' >agreed
body 9 192.0.2.2 'audio 5006 RTP/AVP 0 8' >jumped
invite='INVITE sip:b@y SIP/2.0'
one() { # NAME STATUS PATTERN <CALL
  call >text
  expect "$1" "$2" "~^Call-ID id .*: $3$" nothing -- "$program" calls text
}
one "an offer in the response" 0 "1 offer, 1 answer: nothing wrong" <<CALL
$invite|1||1 INVITE|
SIP/2.0 200 OK|1|2|1 INVITE|offer
ACK sip:b@y SIP/2.0|1|2|1 ACK|answer
CALL
one "an answer in a provisional response, and again" 0 "1 offer, 1 answer: nothing wrong" <<CALL
$invite|1||1 INVITE|offer
$invite|1||1 INVITE|offer
SIP/2.0 183 Session Progress|1|2|1 INVITE|answer
SIP/2.0 200 OK|1|2|1 INVITE|answer
ACK sip:b@y SIP/2.0|1|2|1 ACK|
CALL
one "an UPDATE" 1 "error: line [0-9]+: the version did not rise by one .VersionJumped, RFC 3264 8." <<CALL
$invite|1||1 INVITE|offer
SIP/2.0 200 OK|1|2|1 INVITE|answer
UPDATE sip:b@y SIP/2.0|1|2|2 UPDATE|second
SIP/2.0 200 OK|1|2|2 UPDATE|jumped
CALL
one "a challenge" 0 "2 offers, 1 answer: nothing wrong" <<CALL
$invite|1||1 INVITE|offer
SIP/2.0 407 Proxy Authentication Required|1|3|1 INVITE|
ACK sip:b@y SIP/2.0|1|3|1 ACK|
$invite|1||2 INVITE|offer
SIP/2.0 200 OK|1|2|2 INVITE|answer
CALL
one "no answer" 1 "error: line 1: the offer has no answer .OfferUnanswered, RFC 3264 4." <<CALL
$invite|1||1 INVITE|offer
SIP/2.0 180 Ringing|1|2|1 INVITE|
CALL
# Offers that cross: one is refused with 491, and the other one is answered.
one "a request pending" 1 "error: line 22: a new offer while the last one has no answer .OfferTooEarly, RFC 3264 4." <<CALL
$invite|1||1 INVITE|
SIP/2.0 183 Session Progress|1|2|1 INVITE|offer
UPDATE sip:b@y SIP/2.0|1|2|2 UPDATE|second
SIP/2.0 491 Request Pending|1|2|2 UPDATE|
PRACK sip:b@y SIP/2.0|1|2|3 PRACK|answer
SIP/2.0 200 OK|1|2|3 PRACK|
SIP/2.0 200 OK|1|2|1 INVITE|
CALL
one "versions that count what was refused" 1 "error: line 43: the offer was refused: 488 Not Acceptable Here .OfferRefused, RFC 3261 21.4.26." <<CALL
$invite|1||1 INVITE|offer
SIP/2.0 200 OK|1|2|1 INVITE|answer
$invite|1|2|2 INVITE|second
SIP/2.0 488 Not Acceptable Here|1|2|2 INVITE|
$invite|1|2|3 INVITE|third
SIP/2.0 200 OK|1|2|3 INVITE|agreed
CALL
one "two offers at once" 1 "error: line 15: a new offer while the last one has no answer .*, and 2 more" <<CALL
$invite|1||1 INVITE|offer
$invite|1||2 INVITE|second
CALL
echo 'sdpline: good.sdp: it holds no SIP message' >plain
expect "a plain body is no call" 2 '~^0 calls, 0 with' plain -- "$program" calls good.sdp

# ---- Other forms
if command -v jq >/dev/null; then
  printf '%s\n' 'StreamMissing' 'INVITE offer 1 10.0.0.1 10.0.0.2 11' >known
  expect "--json" 0 known nothing -- sh -c '"$1" calls --json --call-id lines@10.0.0.1 calls.pcap |
    jq -r ".calls[0] | .findings[0].name, (.messages[0] |
      \"\(.message) \(.role) \(.sender) \(.receiver) \(.frame)\")"' _ "$program"
fi
"$program" calls --redact --verbose --html page.html calls.pcap >masked
expect "masks" 1 nothing nothing -- grep -hE '10\.0\.0\.[12]|alice|refused@' masked page.html
expect "a page" 1 - nothing -- "$program" calls --html page.html calls.pcap
if command -v python3 >/dev/null; then
  expect "the page is well formed, and needs nothing else" 0 '~^6 sections, 7 pairs$' nothing -- \
    python3 - page.html <<'PYTHON'
import html.parser
import sys


class Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.open, self.counts = [], {}

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            assert name not in ("src", "href"), "the page asks for " + value
        if tag not in ("meta", "br"):
            self.open.append(tag)
        key = dict(attributes).get("class") or tag
        self.counts[key] = self.counts.get(key, 0) + 1

    def handle_endtag(self, tag):
        assert self.open.pop() == tag, "not nested: " + tag


page = Page()
page.feed(open(sys.argv[1], encoding="utf-8").read())
assert not page.open and "script" not in page.counts
print(page.counts["section"], "sections,", page.counts["pair"], "pairs")
PYTHON
fi
printf 'INVITE sip:b SIP/2.0\r\ni: <script>alert(1)</script>\r\nf: sip:"&<b>\r\n\r\n' >evil
"$program" calls --html page.html evil >.out
expect "nothing of a message is markup" 0 '~Call-ID &lt;script&gt;alert' nothing -- cat page.html
expect "no element is made" 1 nothing nothing -- grep -E '<script|<b>[^A-Z]' page.html
expect "a page that cannot be written" 2 - '~^sdpline: no/page.html: cannot be written$' -- \
  "$program" calls --html no/page.html calls.pcap
finish
