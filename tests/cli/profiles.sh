#!/usr/bin/env bash
# sdpline profiles
. "$(dirname "$0")/expect.sh"

cat >text <<'TEXT'
profile  payload  name       clock rate  channels
      1        0  PCMU             8000         1
      2        3  GSM              8000         1
      3        4  G723             8000         1
      4        5  DVI4             8000         1
      5        6  DVI4            16000         1
      6        7  LPC              8000         1
      7        8  PCMA             8000         1
      8        9  G722             8000         1
      9       10  L16             44100         2
     10       11  L16             44100         1
     11       12  QCELP            8000         1
     12       13  CN               8000         1
     13       14  MPA             90000         1
     14       15  G728             8000         1
     15       16  DVI4            11025         1
     16       17  DVI4            22050         1
     17       18  G729             8000         1
     18        -  G726-40          8000         1
     19        -  G726-32          8000         1
     20        -  G726-24          8000         1
     21        -  G726-16          8000         1
     22        -  G729D            8000         1
     23        -  G729E            8000         1
     24        -  GSM-EFR          8000         1
     25        -  L8                  -         1
     26        -  RED                 -         1
     27        -  VDVI                -         1
     28       25  CelB            90000         1
     29       26  JPEG            90000         1
     30       28  nv              90000         1
     31       31  H261            90000         1
     32       32  MPV             90000         1
     33       33  MP2             90000         1
     34       34  H263            90000         1
     35        -  H263-1998       90000         1
TEXT
expect "the table" 0 text nothing -- "$program" profiles
expect "--json" 0 - nothing -- "$program" profiles --json
"$program" profiles --json | tr -d ' \n' >json
grep -o '{[^}]*}' json >rows
printf '%s\n' '{"profile":9,"name":"L16","clockRate":44100,"channels":2,"payload":10}' >l16
printf '%s\n' '{"profile":25,"name":"L8","clockRate":0,"channels":1}' >l8
expect "its rows" 0 l16 nothing -- sed -n 9p rows
expect "a row without payload type" 0 l8 nothing -- sed -n 25p rows
echo 35 >rowcount
expect "all of them" 0 rowcount nothing -- grep -c . rows
expect "an argument" 2 nothing - -- "$program" profiles x
finish
