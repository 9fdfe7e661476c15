#!/usr/bin/env bash
# Compiles the function that sdpline.hpp shows at its top, and sees it do what it says.
# usage: manual.sh SOURCE_DIR BUILD_DIR CXX
set -euo pipefail
source=$1 build=$2 cxx=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

{
  echo '#include <sdpline/sdpline.hpp>'
  printf "#include <%s>\n" iostream string utility
  awk '/^ \* Conventions/ { exit } /^ \*     / { print substr($0, 8) }' \
    "$source/include/sdpline/sdpline.hpp"
  cat <<'PROGRAM'
int main() {
    const std::string begin = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n";
    auto text = withoutVideo(
        begin + "m=video 5 RTP/AVP 31\r\nm=audio 7 RTP/AVP 0\r\na=sendonly\r\n");
    const auto refused = withoutVideo("v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=\r\n");
    std::cout << std::move(text).valueOr("") << refused.error().message() << '\n';
}
PROGRAM
} >"$work/program.cpp"
cat >"$work/expected" <<'TEXT'
v=0
o=- 1 1 IN IP4 192.0.2.1
s=-
t=0 0
m=video 0 RTP/AVP 31
m=audio 7 RTP/AVP 0
a=recvonly
3:3: expected a value after the "=" of the line
TEXT
cd "$work"
"$cxx" -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -I"$source/include" \
  program.cpp -L"$build/src" -L"$build/src/sipcore" -lsdpline -lsipcore \
  -Wl,-rpath,"$build/src:$build/src/sipcore" -o program
./program | tr -d '\r' | sed 's/ (sdpparser .*//' | diff expected -
echo "manual: the program does what its header says"
