#!/usr/bin/env bash
# sdpline explain
. "$(dirname "$0")/expect.sh"

cat >octet <<'TEXT'
0x05035065: expected an octet of at most 255
  check     ConnLastOctetRange
  made by   sdpConnectionFieldAddrIpv4 in sdpparser
  parts     file 5, location 212, class 101 (a token that the grammar of the field does not allow)
TEXT
expect "hexadecimal" 0 octet nothing -- "$program" explain 0x05035065
expect "hexadecimal, upper case" 0 octet nothing -- "$program" explain 0X05035065
expect "decimal" 0 octet nothing -- "$program" explain 84103269
cat octet octet >twice
expect "two codes" 0 twice nothing -- "$program" explain 0x5035065 84103269
sed 's/0x05/0x0c/; s/file 5/file 12/' octet >based
expect "--file-base 7" 0 based nothing -- "$program" explain --file-base 7 0c035065
expect "--file-base 0x107" 0 based nothing -- "$program" explain --file-base 0x107 0x0c035065
cat >unknown <<'TEXT'
0x0c035065: no check of the library returns this under file base 0
  parts     file 12, location 212, class 101 (a token that the grammar of the field does not allow)
  with --file-base 7: expected an octet of at most 255 [ConnLastOctetRange]
TEXT
expect "the base is missing" 1 unknown nothing -- "$program" explain 0x0c035065
echo '0x00000000: success' >success
expect "0" 0 success nothing -- "$program" explain 0
cat >bare <<'TEXT'
0x00000008: the number 8 alone, which these checks return; only the log entry says which one failed
  SdpTokanizeIPv6Str: expected a text of at least one byte and no null pointer [Ipv6TokensArgument]
TEXT
expect "a bare 8" 0 bare nothing -- "$program" explain 8
expect "a bare 1" 0 '~^  SdpSetT38OptCfg: expected a T.38 style from 0 to 2 \[ConfigT38Style\]$' nothing -- \
  "$program" explain 1
expect "several checks return it" 0 '~^  SdpCopyLine: ' nothing -- "$program" explain 1
expect "unknown and known" 1 '~ConnLastOctetRange$' nothing -- "$program" explain 2 0x05035065
for word in zz 0x "" 4294967296 -1 1.5 "1 2"; do
  expect "'$word' is no code" 2 nothing - -- "$program" explain -- "$word"
done
expect "a base that is no number" 2 nothing '~--file-base: expected a number, found "x"' -- \
  "$program" explain --file-base x 1
expect "no code" 2 nothing '~CODE is required' -- "$program" explain

# ---- Names and codes that other commands print
expect "a check's name" 0 octet nothing -- "$program" explain ConnLastOctetRange
expect "as sdpline check prints it" 0 octet nothing -- "$program" explain '[ConnLastOctetRange]'
expect "in lower case" 0 octet nothing -- "$program" explain connlastoctetrange
expect "hexadecimal of digits alone" 0 octet nothing -- "$program" explain 05035065
expect "the same without its first digit" 0 octet nothing -- "$program" explain 5035065
cat >passed <<'TEXT'
the code of what it called: the IPv6 address was refused
  check     ConnIpv6Refused
  made by   sdpConnectionFieldAddrIpv6 in sdpparser
TEXT
expect "a check without a code" 0 passed nothing -- "$program" explain ConnIpv6Refused
expect "no check" 2 nothing '~^sdpline: Conn: expected a result code or the name of a check, doubt or repair$' -- \
  "$program" explain Conn

# ---- Every row of the list is explained, by its code and by its name
"$program" explain --list >list
expect "--list" 0 list nothing -- "$program" explain --list
[ "$(wc -l <list)" -gt 200 ] || { failures=$((failures + 1)); echo "--list is short"; }
awk '{ print $2 }' list >names
awk '$1 !~ /^0x0000000/ { print $1 }' list >codes
awk '$1 !~ /^0x0000000/ { print $2 }' list >named
for form in 's/^//' 's/^0x//' 's/^0x0*//'; do
  sed "$form" codes | xargs "$program" explain | awk '$1 == "check" { print $2 }' >explained
  expect "every code of the list, $form" 0 named nothing -- cat explained
done
xargs "$program" explain <names | awk '$1 == "check" { print $2 }' >explained
expect "every name of the list" 0 names nothing -- cat explained
xargs "$program" explain <names | awk -F: '/^0x/ { print $1 }' >explained
expect "its code" 0 explained nothing -- awk '{ print $1 }' list
awk '$1 ~ /^0x0000000/ { print $1, $2 }' list | while read -r code name; do
  grep -qF "[$name]" <<<"$("$program" explain "$code")" || echo "$code $name"
done >missing
expect "every bare number of the list" 0 nothing nothing -- cat missing
"$program" explain --list --file-base 9 | awk '$1 !~ /^0x0000000/ { print $1 }' |
  xargs "$program" explain --file-base 9 >explained
expect "the list under another base" 1 nothing nothing -- grep 'no check of the library' explained
finish
