#!/usr/bin/env bash
# SIP messages in files: framing, and positions that count the lines of the file.
. "$(dirname "$0")/expect.sh"

message good.sip good.sdp
message bad.sip bad.sdp
{ cat good.sip; printf 'not of the body'; } >longer
expect "a request is cut at its length" 0 good.sdp nothing -- "$program" format longer
{ printf 'SIP/2.0 200 OK\r\nc: Application/SDP;charset=utf-8\r\n\r\n'; cat good.sdp; } >answer
expect "a response with a compact header" 0 good.sdp nothing -- "$program" format answer
message folded good.sdp "Subject: a" "  c: text/plain" $'Content-Type\t:' $'\tapplication/sdp' ' ;x=y'
expect "folded headers" 0 good.sdp nothing -- "$program" format folded

# ---- Many messages in one file
{
  echo "10:00:00 received from 192.0.2.1"
  cat good.sip
  echo "10:00:01 sent"
  cat bad.sip
  printf 'BYE sip:bob@example.com SIP/2.0\r\nContent-Length: 0\r\n\r\n'
  cat bad.sip
  echo "10:00:02 end"
} >trace
{
  badOctet trace 21
  badOctet trace 33
  echo 'checked 3 bodies in 1 file: 2 refused'
} >refused
expect "a trace" 1 refused nothing -- "$program" check trace
expect "its good body" 1 good.sdp '~^trace:33:16: expected an octet' -- "$program" format trace
tr -d '\r' <trace >trace.lf
sed -i 's/^trace/trace.lf/' refused
expect "a trace that lost its carriage returns" 1 refused nothing -- "$program" check trace.lf

# ---- Multipart
{
  printf -- 'preamble\r\n--next part\r\nContent-Type: text/plain\r\n\r\nv=0\r\n'
  printf -- '--next part\r\nContent-Type: application/sdp\r\n\r\n'
  cat good.sdp
  printf -- '\r\n--next part\r\nContent-Disposition: session\r\nc: application/sdp\r\n\r\n'
  cat bad.sdp
  printf -- '\r\n--next part--\r\nepilogue\r\n'
} >parts
message multipart parts 'Content-Type: multipart/mixed;' ' boundary="next part"'
{
  badOctet multipart 28
  echo 'checked 2 bodies in 1 file: 1 refused'
} >refused
expect "a multipart body" 1 refused nothing -- "$program" check multipart
expect "its good part" 1 good.sdp '~^multipart:28:16' -- "$program" format multipart

# ---- Bodies that cannot be read
problem() { # NAME FILE MESSAGE
  printf 'sdpline: %s\n' "$3" >message
  expect "$1, decode" 2 nothing message -- "$program" decode "$2"
  echo 'checked 0 bodies in 1 file: none refused, 1 problem' >summary
  expect "$1, check" 2 summary message -- "$program" check "$2"
}
message text good.sdp "Content-Type: text/plain"
problem "a message of another type" text "text: the SIP message carries no application/sdp body"
cat text text >texts
problem "messages of another type" texts "texts: no SIP message carries an application/sdp body"
message gzip good.sdp "c: application/sdp" "e: gzip"
problem "a compressed body" gzip "gzip: the body is encoded as gzip"
message boundary parts "c: multipart/mixed"
problem "no boundary" boundary "boundary: the multipart body's Content-Type has no boundary"

# ---- Wrong lengths: they are reported, and the body is checked
wrong() { # NAME FILE MESSAGE
  printf "sdpline: %s\n" "$3" >message
  expect "$1, decode" 1 good.tree message -- "$program" decode "$2"
  echo 'checked 1 body in 1 file: none refused, 1 problem' >summary
  expect "$1, check" 1 summary message -- "$program" check "$2"
}
sed 's/^Content-Length: .*/Content-Length: 400\r/' good.sip >early
wrong "a message that ends too early" early \
  "early: the SIP message's Content-Length is 400, but only 55 bytes of body follow"
sed 's/^Content-Length: .*/Content-Length: 30\r/' good.sip >cut
wrong "a length that cuts the body" cut \
  "cut: the SIP message's Content-Length is 30, which cuts the body: it has 55 bytes"
sed 's/^Content-Length: .*/l: 4x\r/' good.sip >length
wrong "a length that is no number" length "length: the SIP message's Content-Length is not a number"
{ echo; cat length; } >later
wrong "the same on line 2" later "later:2: the SIP message's Content-Length is not a number"
finish
