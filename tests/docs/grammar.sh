#!/usr/bin/env bash
# Tests the sentences of docs/grammar.md, each with bodies that are accepted, changed or refused.
# usage: grammar.sh PROGRAM
set -uo pipefail
program=$1
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 2
count=0
failed=0

# The text of a body: the argument, after a head if it does not begin with "v=".
body() {
  case $1 in
  v=*) printf "$1" ;;
  m=* | a=* | z=*) printf "v=0\no=- 1 1 IN IP4 h\ns=-\nt=0 0\n$1" ;;
  t=*) printf "v=0\no=- 1 1 IN IP4 h\ns=-\n$1" ;;
  o=*) printf "v=0\n$1\ns=-\nt=0 0\n" ;;
  *) printf "v=0\no=- 1 1 IN IP4 h\ns=-\n$1\nt=0 0\n" ;;
  esac
}

wrong() { # BODY WANTED GOT
  printf '%q\n  wanted: %q\n  got:    %q\n' "$1" "$2" "$3"
  failed=$((failed + 1))
}

# takes BODY LINE [OPTION...]: the body is accepted, and LINE is in the text that is written back.
takes() {
  local text=$1 line got
  line=$(printf "$2_") line=${line%_}
  shift 2
  count=$((count + 1))
  body "$text" >body
  got=$("$program" format --line-end lf "$@" body 2>&1)
  [[ $'\n'$got$'\n' == *$'\n'"$line"$'\n'* ]] || wrong "$text" "$line" "$got"
}

# same BODY LINE...: each line is written back unchanged.
same() {
  local line
  for line in "$@"; do takes "$line" "$line"; done
}

# refuses CHECK BODY...
refuses() {
  local check=$1 text got
  shift
  for text in "$@"; do
    count=$((count + 1))
    body "$text" >body
    got=$("$program" check body 2>&1)
    [[ $got == *"[$check]"* ]] || wrong "$text" "$check" "$got"
  done
}

# bytes PREFIX SUFFIX EXPECTED: the bytes from 1 to 255, in hexadecimal, that are refused between
# PREFIX and SUFFIX.
bytes() {
  local byte hex got
  rm -rf bytes && mkdir bytes
  for ((byte = 1; byte < 256; ++byte)); do
    printf -v hex %02x "$byte"
    body "$1\\x$hex$2" >"bytes/$hex"
  done
  got=$("$program" check bytes 2>&1 | sed -n 's|^bytes/\(..\):[0-9:]*: error: .*|\1|p' | sort -u | tr '\n' ' ')
  count=$((count + 1))
  [ "$got" = "$3 " ] || wrong "bytes of $1" "$3" "$got"
}

long() { printf '%*s' "$1" '' | tr ' ' "$2"; }

# ---- The normal form
takes 'a=x:one\rtwo\n' 'a=x:one\rtwo'
takes 'a=x:1\n   a=x:2\n' 'a=x:2'
refuses AfterAttributes 'a=x:1\n\ta=x:2\n'
count=$((count + 1))
printf ' v=0\no=- 1 1 IN IP4 h\ns=-\n' >body
got=$("$program" check body 2>&1)
[[ $got == *'[StartVersion]'* ]] || wrong ' v=0' StartVersion "$got"
takes 'a=x:\x00one\n' 'a=x:one'
same 'a=x:no line end'

# ---- Common parts
takes 'a=ptime:4294967297\n' 'a=ptime:1'
takes "a=ptime:$(long 1022 0)7\n" 'a=ptime:7'
refuses PacketText "a=ptime:$(long 1023 0)7\n"
same "i=$(long 1023 x)"
refuses TextTooLong "i=$(long 1024 x)"
bytes 'o=a' 'b 1 1 IN IP4 h' '09 0a 20'
bytes 'm=a' 'b 1 x y' '09 0a 20 28 29 2c 3a 3b 3c 3e 40'
bytes 'i=a' 'b' '0a'
refuses OriginUserSpace 'o=a\tb 1 1 IN IP4 h'
same "o=$(long 1023 x) 1 1 IN IP4 h"
refuses OriginUserText "o=$(long 1024 x) 1 1 IN IP4 h"

# ---- The order of lines: all pairs in the table, and only they, are accepted
declare -A after=([s]='iuepcbtm' [i]='uepcbt' [u]='epcbt' [e]='epcbt' [p]='pcbt' [c]='btm' [b]='bt'
  [t]='trzkam' [z]='kam' [k]='am' [a]='am')
declare -A sample=([v]='v=0' [o]='o=- 1 1 IN IP4 h' [s]='s=-' [i]='i=x' [u]='u=x' [e]='e=x' [p]='p=x'
  [c]='c=IN IP4 1.2.3.4' [b]='b=x' [t]='t=0 0' [r]='r=1' [z]='z=x' [k]='k=x' [a]='a=x' [m]='m=x 0 y z')
head='v=0\no=- 1 1 IN IP4 h\ns=-\n'
declare -A lead=([s]='' [i]='i=x\n' [u]='u=x\n' [e]='e=x\n' [p]='p=x\n' [c]='c=IN IP4 1.2.3.4\n' [b]='b=x\n'
  [t]='t=0 0\n' [z]='t=0 0\nz=x\n' [k]='t=0 0\nk=x\n' [a]='t=0 0\na=x\n')
mkdir order
for first in s i u e p c b t z k a; do
  printf "$head${lead[$first]}" >"order/$first-end"
  for second in v o s i u e p c b t r z k a m; do
    printf "$head${lead[$first]}${sample[$second]}\n" >"order/$first-$second"
    [[ ${after[$first]} == *$second* ]] || echo "$first-$second"
  done
done | sort >wanted
media=icbka
printf "${head}t=0 0\nm=x 0 y z\n" >order/m-end
for first in m i c b k a; do
  for second in v o s i u e p c b t r z k a m; do
    line=''
    [ $first = m ] || line="${sample[$first]}\n"
    printf "${head}t=0 0\nm=x 0 y z\n$line${sample[$second]}\n" >"order/media-$first-$second"
    case $first$second in
    ?m | bb | aa) ;;
    m[icbka] | i[cbka] | c[bka] | b[ka] | ka) ;;
    *) echo "media-$first-$second" ;;
    esac
  done
done | sort >>wanted
sort -o wanted wanted
"$program" check order 2>&1 | sed -n 's|^order/\([a-z-]*\):[0-9:]*: error: .*|\1|p' | sort >got
count=$((count + 1))
cmp -s wanted got || wrong 'the order of lines' "$(<wanted)" "$(<got)"
takes 'm=x 0 y z\ni=x\nm=x 1 y z\n' 'm=x 1 y z'
takes 'v=0\no=- 1 1 IN IP4 h\ns=-\nm=x 0 y z\n' 't=0 0\r\nm=x 0 y z'

# ---- v= and o=
takes 'v=00012\no=- 1 1 IN IP4 h\ns=-\n' 'v=12'
long=$(long 1023 9)
same "o=- $long 0$(long 1022 1) IN IP6 1.2.3.4" 'o=- 1 1 IN IP4 a.host.example'
refuses OriginIdText "o=- ${long}9 1 IN IP4 h"
refuses OriginNetType 'o=- 1 1 ATM IP4 h' 'o=- 1 1 in IP4 h'
refuses OriginAddrType 'o=- 1 1 IN IP5 h'
refuses OriginId 'o=- x 1 IN IP4 h'

# ---- Lines of text
same 'i= ' 'u=not a uri' 'b=no bandwidth'
takes 't=0 0\nz=no zone\nk=no key\n' 'z=no zone\nk=no key'
refuses TextEmpty 'i=' 'b='

# ---- c=
refuses ConnOctet 'c=IN IP4 a.host.example'
takes 'c=IN IP4 2147483648.4294967295.001.4' 'c=IN IP4 0.255.1.4'
refuses ConnOctetRange 'c=IN IP4 256.1.1.1' 'c=IN IP4 1.1.2147483647.1'
refuses ConnLastOctetRange 'c=IN IP4 1.1.1.256'
same 'c=IN IP4 224.2.1.1/127/3' 'c=IN IP4 224.2.1.1/127'
takes 'c=IN IP4 1.2.3.4/4294967295/4294967295' 'c=IN IP4 1.2.3.4'
ipv6=0000:0000:0000:0000:0000:0000:0000
takes 'c=IN IP6 ::1/127/3' "c=IN IP6 $ipv6:0001/127/3"
takes 'c=IN IP6 ::abcd' "c=IN IP6 $ipv6:ABCD"
takes 'c=IN IP6 1:2' 'c=IN IP6 0001:0002:0000:0000:0000:0000:0000:0000'
takes 'c=IN IP6 1x:2' 'c=IN IP6 0001:0002:0000:0000:0000:0000:0000:0000'
takes 'c=IN IP6 ::ffff:192.0.2.1' 'c=IN IP6 0000:0000:0000:0000:0000:FFFF:C000:0201'
refuses ConnIpv6Kind 'c=IN IP6 1:2.'
refuses Ipv6Colons 'c=IN IP6 1:2:3:4:5:6:7:8:9:10'
refuses Ipv6HeadOctet 'c=IN IP6 1:2:3:4:5:6:1.2.3.256'
refuses Ipv6TailOctet 'c=IN IP6 ::1.2.3.256'

# ---- t= and r=
takes 't=4294967295 0000000001' 't=4294967295 1'
refuses TimeStartRange 't=4294967296 0' 't=00000000001 0'
refuses TimeStopRange 't=0 4294967296'
takes 't=0 0\nr=7days\n' 'r=7d'
takes 't=0 0\nr=1d 2h 3m 4s 5\n' 'r=1d 2h 3m 4s 5s'
refuses TypedTimeUnit 't=0 0\nr=7w\n' 't=0 0\nr=7D\n'
takes 't=0 0\nr=1\nt=1 1\nm=x 0 y z\n' 't=0 0\nr=1s\nm=x 0 y z'
times=$(for ((i = 0; i < 256; ++i)); do printf 't=1 1\\n'; done)
takes "${times}m=x 0 y z\n" 's=-\nt=0 0\r\nm=x 0 y z'
takes "${times}t=2 2\n" 't=2 2'

# ---- m=
same 'm=audio 1 RTP/AVP 0' 'm=video 1 RTP/SAVP 0' 'm=application 1 x y' 'm=other-word 1 x y'
takes 'm=x 1 UDP y' 'm=x 1 udp y'
takes 'm=x 1 tcp y' 'm=x 1 TCP y'
same 'm=image 1 udptl t38' 'm=x 1 TCP t120'
refuses FormatT120 'm=x 1 udp t120'
refuses FormatEnd 'm=audio 9 RTP/SAVPF 0 8' 'm=audio 9 RTP/AVPF 0 8'
takes 'm=audio 9 RTP/AVPF 0 8' 'm=audio 9 RTP/AVPF 0 8' --avpf
takes 'm=audio 9 UDP/TLS/RTP/SAVPF 0 8' 'm=audio 9 UDP/TLS/RTP/SAVPF 0 8' --rtp-family
same 'm=audio 0 RTP/AVP'
refuses PayloadsMissing 'm=audio 1 RTP/AVP'
takes 'm=audio 1 RTP/AVP ' 'm=audio 1 RTP/AVP'
takes 'm=audio 1 RTP/AVP 0 ' 'm=audio 1 RTP/AVP 0'
hundred=$(printf ' %d' {0..99})
same "m=audio 1 RTP/AVP$hundred"
refuses PayloadLimit "m=audio 1 RTP/AVP$hundred " "m=audio 1 RTP/AVP$hundred 100"
takes 'm=audio 4294967297/4294967298 RTP/AVP 4294967295 4294967296' 'm=audio 1/2 RTP/AVP 4294967295 0'
takes 'm=audio 1/1 RTP/AVP 0' 'm=audio 1 RTP/AVP 0'
many=$(for ((i = 0; i < 256; ++i)); do printf 'm=x 1 y z\\n'; done)
takes "$many" 't=0 0'
takes "${many}m=x 2 y z\n" 't=0 0\nm=x 2 y z'

# ---- a=
takes 'a=FAX' 'a=fax'
takes 'a=x-MODEM' 'a=X-modem'
same 'a=SENDRECV' 'a=PTIME:20' 'a=rtpmap:7 LPC/8000' 'a=framerate:25' 'a=quality:10' 'a=lang:en us'
takes 'a=framerate:29.97' 'a=framerate:29'
takes 'a=T38FaxFillBitRemoval:0\na=x\n' 't=0 0\na=x'
takes 'a=T38FaxFillBitRemoval' 'a=T38FaxFillBitRemoval:1' --t38 2
takes 'a=T38FaxFillBitRemoval:7' 'a=T38FaxFillBitRemoval:7' --t38 2
takes 'a=T38FaxFillBitRemoval:7' 'a=T38FaxFillBitRemoval'
takes 'a=T38FaxFillBitRemoval:7' 'a=T38FaxFillBitRemoval' --t38 1
same 'a=T38FaxRateManagement:localTCF' 'a=T38FaxUdpEC:t38UDPFEC' 'a=silenceSupp:on - - - -' \
  'a=ecan:fb on x' 'a=ipbcp:1 Request' 'a=setup:actpass' 'a=curr:qos e2e send' \
  'a=des:other mandatory remote sendrecv' 'a=x' 'a=x:any text'
refuses RateWord 'a=T38FaxRateManagement:localtcf'
refuses ValueColon 'a=fmtp'
refuses UnrecEmpty 'a=anything:'
refuses UnrecEnd 'a=anything '
refuses SilenceNoParams 'a=silenceSupp:on'
takes 'a=ipbcp:257 Request' 'a=ipbcp:1 Request'
takes 'a=rtpmap:96 /8000' 'a=rtpmap:96 /8000'
takes 'a=rtpmap:96 X/8000/1' 'a=rtpmap:96 X/8000'
takes 'a=rtpmap:96 a b:c/8000' 'a=rtpmap:96 a b:c/8000'
same "a=rtpmap:96 $(long 255 x)/8000"
refuses RtpmapNameTooLong "a=rtpmap:96 $(long 256 x)/8000"

[ "$failed" -eq 0 ] && echo "grammar: $count bodies are read as the page says"
exit "$failed"
