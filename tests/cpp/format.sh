#!/usr/bin/env bash
# Errors and values by std::format. Where the standard library has none, by the least of a replacement
# that shows whether format.hpp works as a formatter of the standard.
# usage: format.sh SOURCE_DIR BUILD_DIR CXX
set -euo pipefail
source=$1 build=$2 cxx=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

flags=()
if ! printf '#include <version>\n#ifndef __cpp_lib_format\n#error\n#endif\n' |
  "$cxx" -std=c++20 -x c++ -fsyntax-only - 2>/dev/null; then
  mkdir standin
  cat >standin/format <<'STANDIN'
#include <string>
#include <string_view>
namespace std {
struct format_context { string text; };
template <class Value, class Char = char> struct formatter;
template <> struct formatter<string_view, char> {
    auto format(string_view text, format_context &context) const { return context.text += text; }
};
template <class Value> string format(string_view, const Value &value) {
    format_context context;
    formatter<Value, char>().format(value, context);
    return context.text;
}
}
STANDIN
  flags=(-D__cpp_lib_format=1 -isystem standin)
fi
cat >program.cpp <<'PROGRAM'
#include <sdpline/cpp/format.hpp>
#include <sdpline/sdpline.hpp>

#include <iostream>

int main() {
    const auto body = sdpline::Body::decode("v=0\no=- 1 1 IN IP4 0\ns=-\nm=audio 4 RTP/AVP 0\n");
    std::cout << std::format("{}", body->media()[0]) << '\n'
              << std::format("{}", sdpline::Direction::SendOnly) << '\n'
              << std::format("{}", sdpline::Body::decode("x").error()).substr(0, 5) << '\n';
}
PROGRAM
"$cxx" -std=c++20 -Wall -Wextra -Werror "${flags[@]}" -I"$source/include" program.cpp \
  -L"$build/src" -L"$build/src/sipcore" -lsdpline -lsipcore \
  -Wl,-rpath,"$build/src:$build/src/sipcore" -o program
./program | diff <(printf 'audio 4 RTP/AVP 0\nsendonly\n1:1: \n') -
echo "format: errors and values are formatted"
