#!/usr/bin/env bash
# The layout of the page of calls in a browser: page.sh PROGRAM SOURCE_DIR MAKECAPTURE
# Without Chromium and python3 the test is skipped; ./dev page installs them.
if ! command -v chromium >/dev/null || ! command -v python3 >/dev/null; then
  echo "no chromium or no python3 here"
  exit 77
fi
makecapture=$3
. "$(dirname "$0")/expect.sh"
"$makecapture" calls >calls.pcap
"$makecapture" transports >transports.pcap

# measured WIDTH: the values that a script measures in page.html, shown in a frame of that width,
# since windows have a minimum width.
measured() {
  python3 - "$1" >measured.html <<'PYTHON'
import html
import re
import sys

page = open("page.html", encoding="utf-8").read()
page, policies = re.subn(r"<meta http-equiv=[^>]*>", "", page)  # it forbids every script
assert policies == 1
page = page.replace("</body>", """<script>
const all = selector => [...document.querySelectorAll(selector)];
const boxOf = element => element.getBoundingClientRect();
const isOpen = element => !element.closest("details:not([open])");
const shown = all("body *").filter(element => boxOf(element).width > 0 && isOpen(element));
const tooWide = shown.filter(element => boxOf(element).right > innerWidth + 0.5);
const textOf = pre => pre.textContent.split("\\n").filter(line => line !== "");
const markedWrongly = all(".pair").filter(pair => pair.children.length === 2).flatMap(pair => {
  const sides = [...pair.querySelectorAll("pre")];
  return sides.flatMap((pre, i) => {
    const others = textOf(sides[1 - i]);
    const marked = [...pre.querySelectorAll("mark")].map(mark => mark.textContent);
    return textOf(pre).filter(line => marked.includes(line) === others.includes(line));
  });
});
const open = all(".lanes").filter(isOpen);
const crooked = open.filter(lanes => {
  const arrow = boxOf(lanes.firstElementChild), lane = boxOf(lanes);
  return arrow.width < 60 || arrow.left < lane.left || arrow.right > lane.right;
});
const beside = all(".pair").filter(pair => pair.children.length === 2 && isOpen(pair))
  .map(pair => boxOf(pair.children[0]).top === boxOf(pair.children[1]).top);
const small = shown.filter(element => parseFloat(getComputedStyle(element).fontSize) < 12);
const result = {
  width: innerWidth, scrolls: document.documentElement.scrollWidth > innerWidth,
  tooWide: tooWide.length, small: small.length, calls: all("section").length,
  rows: all(".lanes").length, right: all(".right").length, left: all(".left").length,
  faults: all(".fault").length, pairs: all(".pair").length, marks: all("mark").length > 10,
  markedWrongly: markedWrongly.length, open: open.length, crooked: crooked.length,
  beside: beside.every(Boolean), stacked: !beside.some(Boolean),
  requests: performance.getEntriesByType("resource").length};
const shownResult = parent.document.createElement("pre");
shownResult.id = "result";
shownResult.textContent = JSON.stringify(result);
parent.document.body.append(shownResult);
</script></body>""")
print(f'<!DOCTYPE html><body style="margin:0"><iframe style="width:{sys.argv[1]}px;height:900px;border:0" '
      f'srcdoc="{html.escape(page)}"></iframe>')
PYTHON
  timeout 100 chromium --headless --no-sandbox --disable-gpu --user-data-dir="$work/profile" \
    --window-size=1400,900 --dump-dom "file://$work/measured.html" 2>browser.err |
    sed -n 's/.*<pre id="result">\(.*\)<\/pre>.*/\1/p'
}

# Six calls with 25 messages and nine faults; the call without faults is folded, so 18 rows are
# shown.
"$program" calls --html page.html calls.pcap >.out
known='"tooWide":0,"small":0,"calls":6,"rows":25,"right":15,"left":10,"faults":9,"pairs":7,"marks":true'
known+=',"markedWrongly":0,"open":18,"crooked":0'
printf '{"width":360,"scrolls":false,%s,"beside":false,"stacked":true,"requests":0}\n' "$known" >phone
expect "on a phone" 0 phone nothing -- measured 360
printf '{"width":1200,"scrolls":false,%s,"beside":true,"stacked":false,"requests":0}\n' "$known" >desk
expect "on a desk" 0 desk nothing -- measured 1200

# IPv6 addresses are long.
"$program" calls --html page.html transports.pcap >.out
sed -i 's/<details>/<details open>/' page.html
expect "long names on a phone" 0 '~"width":360,"scrolls":false,"tooWide":0,.*"crooked":0' nothing -- \
  measured 360

# A call over two proxies has four sides; a long Call-ID and names of any length.
hop() { # FIRSTLINE FROM TO
  printf '%s\r\nf: <sip:%0100d@x>;tag=1\r\nt: <sip:b@y>\r\ni: %0150d\r\nCSeq: %s\r\n\r\n' \
    "$1" 0 0 "$2"
}
{ hop 'INVITE sip:b@y SIP/2.0' '1 INVITE'; hop 'SIP/2.0 200 OK' '1 INVITE'; } >text
"$program" calls --html page.html text >.out
sed -i 's/<details>/<details open>/' page.html
expect "long words on a phone" 0 '~"width":360,"scrolls":false,"tooWide":0,.*"rows":2' nothing -- \
  measured 360
finish
