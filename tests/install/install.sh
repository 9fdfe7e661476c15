#!/usr/bin/env bash
# Installs the build into a scratch prefix and builds the consumers against it; once more after the
# prefix was moved; and once more with the libraries as static ones.
# usage: install.sh SOURCE_DIR BUILD_DIR CC CXX
set -euo pipefail
source=$1 build=$2 cc=$3 cxx=$4
work=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$work"' EXIT
consumers=$source/tests/install/consumers.sh

fail() {
  echo "install: $*" >&2
  exit 1
}

# A tree of headers that every one stands on its own, and that names no folder of the build.
look() { # PREFIX
  local header
  for header in "$1"/include/sdpline/*.h; do
    "$cc" -std=c11 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I"$1/include" -x c "$header"
  done
  # One sentence for a compiler that is too old, instead of a page of what it stumbles over.
  local said
  said=$("$cxx" -std=c++17 -fsyntax-only -I"$1/include" -x c++ "$1/include/sdpline/sdpline.hpp" 2>&1 |
    grep 'error:' || true)
  [[ $(wc -l <<<"$said") -eq 1 && $said = *"needs C++20"* ]] || fail "sdpline.hpp under C++17: $said"
  diff <(cd "$source/include" && find sdpline -type f | sort) \
    <(cd "$1/include" && find sdpline -type f | sort)
  if grep -rIlF -e "$source" -e "$build" -e "$work" "$1"; then
    fail "the files above name a folder of the build"
  fi
}

cmake --install "$build" --prefix "$work/first" >/dev/null
look "$work/first"
for file in share/man/man1/sdpline.1 share/bash-completion/completions/sdpline \
  share/zsh/site-functions/_sdpline share/fish/vendor_completions.d/sdpline.fish; do
  [ -s "$work/first/$file" ] || fail "$file is not there"
done
"$consumers" "$source/examples" "$work/first" "$work/consumers" "$cc" "$cxx"

mv "$work/first" "$work/moved"
"$consumers" "$source/examples" "$work/moved" "$work/consumers" "$cc" "$cxx"
"$work/moved/bin/sdpline" check "$source/examples/offer.sdp" >/dev/null ||
  fail "the program does not run where it was moved to"

cmake -S "$source" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSDPLINE_STATIC=ON \
  -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" -DSDPLINE_TESTS=OFF -DSDPLINE_TOOLS=OFF >/dev/null
cmake --build "$work/build" -j2 >/dev/null
cmake --install "$work/build" --prefix "$work/static" >/dev/null
"$consumers" "$source/examples" "$work/static" "$work/consumers" "$cc" "$cxx" --static

# The archive keeps the lexer's short names to itself when it is told so, and a program with functions
# of the same names links with it.
same_names() {
  "$cc" -std=c11 -I"$work/static/include" "$source/tests/link/same_names.c" \
    "$(find "$work/static" -name libsdpline.a)" "$(find "$work/static" -name libsipcore.a)" \
    -o "$work/same_names" 2>"$work/same_names.log"
}
mark() { nm "$(find "$work/static" -name libsdpline.a)" 2>&1 | awk '$3 == "mark" { print $2 }' | sort -u; }
[[ $(mark) = *T* ]] || fail "sdpinternals.h declares names that the archive does not have"
cmake -DSDPLINE_LOCAL_NAMES=ON "$work/build" >/dev/null
cmake --build "$work/build" >/dev/null
cmake --install "$work/build" --prefix "$work/static" >/dev/null
[ "$(mark)" = t ] || fail "SDPLINE_LOCAL_NAMES leaves mark for everybody"
same_names || fail "same_names does not link: $(cat "$work/same_names.log")"
"$work/same_names"
"$consumers" "$source/examples" "$work/static" "$work/consumers" "$cc" "$cxx" --static

# The name that programs ask for is the beginning of the file's.
while read -r library; do
  soname=$(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
  [[ ${library##*/} = "$soname".* ]] || fail "${library##*/} is asked for as $soname"
done < <(find "$work/moved" -type f -name 'lib*.so.*')

# A project that knows no C++ links the static libraries as well.
mkdir "$work/plain"
cat >"$work/plain/CMakeLists.txt" <<TEXT
cmake_minimum_required(VERSION 3.25)
project(plain LANGUAGES C)
find_package(sdpline 1.0 CONFIG REQUIRED)
add_executable(answer $source/examples/answer.c)
target_link_libraries(answer PRIVATE sdpline::negotiate)
TEXT
cmake -S "$work/plain" -B "$work/plain/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/static" \
  -DCMAKE_C_COMPILER="$cc" >/dev/null
cmake --build "$work/plain/build" >/dev/null
"$work/plain/build/answer" <"$source/examples/offer.sdp" | tr -d '\r' | diff "$source/examples/answer.sdp" -
echo "install: installed, moved and static, all of them serve consumers"
