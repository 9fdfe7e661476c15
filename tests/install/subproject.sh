#!/usr/bin/env bash
# A project that contains these sources as a subproject: its settings are not changed. Then the
# static libraries that it installs, and projects that use them.
# usage: subproject.sh SOURCE_DIR CC CXX
set -euo pipefail
source=$1 cc=$2 cxx=$3
work=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "subproject: $*" >&2
  exit 1
}

mkdir "$work/parent"
cat >"$work/parent/CMakeLists.txt" <<TEXT
cmake_minimum_required(VERSION 3.25)
project(parent LANGUAGES C CXX)
set(before "\${CMAKE_BUILD_TYPE}|\${CMAKE_CXX_STANDARD}|\${CMAKE_CXX_VISIBILITY_PRESET}")
add_subdirectory($source sdpline)
set(after "\${CMAKE_BUILD_TYPE}|\${CMAKE_CXX_STANDARD}|\${CMAKE_CXX_VISIBILITY_PRESET}")
if(NOT before STREQUAL after)
  message(FATAL_ERROR "settings were \${before} and are \${after}")
endif()
get_cmake_property(variables VARIABLES)
get_cmake_property(cached CACHE_VARIABLES)
foreach(variable IN LISTS variables cached)
  if(variable MATCHES "^CPACK_")
    message(FATAL_ERROR "\${variable} is set")
  endif()
endforeach()
add_executable(answer $source/examples/answer.c)
target_link_libraries(answer PRIVATE sdpline::negotiate)
TEXT
configure() { # BUILD OPTION...
  local build=$1
  shift
  cmake -S "$work/parent" -B "$work/$build" -G Ninja -DCMAKE_C_COMPILER="$cc" \
    -DCMAKE_CXX_COMPILER="$cxx" "$@" >/dev/null || fail "$build does not configure"
}
flags() { ninja -C "$work/$1" -t commands sdpline | grep -F ' -c '; } # BUILD
installed() { # BUILD
  cmake --install "$work/$1" --prefix "$work/$1.prefix" >/dev/null || fail "$1 does not install"
  find "$work/$1.prefix" -type f 2>/dev/null | wc -l
}

# Static, in units of many sources, with the parent's level of checked copies, and installed
# because the parent says so.
configure static -DBUILD_SHARED_LIBS=OFF -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 \
  -DSDPLINE_INSTALL=ON -DCMAKE_CXX_FLAGS="-O1 -D_FORTIFY_SOURCE=1"
# Only developers of the library get errors for warnings, not its users.
flags static >"$work/flags"
grep -q -e -Werror "$work/flags" && fail "warnings are errors"
grep -q -e -D_FORTIFY_SOURCE=3 "$work/flags" && fail "the level of checked copies is not the parent's"
cmake --build "$work/static" >"$work/log" || fail "$(grep -m 5 -E 'error|FAILED' "$work/log")"
"$work/static/answer" <"$source/examples/offer.sdp" | tr -d '\r' | diff "$source/examples/answer.sdp" -
[ -e "$work/static/sdpline/src/libsdpline.a" ] || fail "BUILD_SHARED_LIBS=OFF gives no archive"
[ "$(installed static)" -gt 20 ] || fail "SDPLINE_INSTALL=ON installs too little"
[ -e "$(find "$work/static.prefix" -name libsdpline.a)" ] || fail "libsdpline.a is not installed"

# ---- The installed static libraries
prefix=$work/static.prefix
archive=$(find "$prefix" -name libsdpline.a)
consumers() {
  "$source/tests/install/consumers.sh" "$source/examples" "$prefix" "$work/consumers" "$cc" "$cxx" \
    --static
}
consumers

# With SDPLINE_LOCAL_NAMES the archive hides the short names of the lexer, so that a program with
# functions of the same names links with it.
mark() { nm "$archive" 2>&1 | awk '$3 == "mark" { print $2 }' | sort -u; }
[[ $(mark) = *T* ]] || fail "sdpinternals.h declares names that the archive does not have"
cmake -DSDPLINE_LOCAL_NAMES=ON "$work/static" >/dev/null
cmake --build "$work/static" >/dev/null
cmake --install "$work/static" --prefix "$prefix" >/dev/null
[ "$(mark)" = t ] || fail "SDPLINE_LOCAL_NAMES leaves mark for everybody"
"$cc" -std=c11 -I"$prefix/include" "$source/tests/link/same_names.c" "$archive" \
  "$(find "$prefix" -name libsipcore.a)" -o "$work/same_names" 2>"$work/log" ||
  fail "same_names does not link: $(cat "$work/log")"
"$work/same_names"
consumers

# A project without C++ links them too.
mkdir "$work/c"
cat >"$work/c/tidy.c" <<TEXT
#include <string.h>

#include "sdpline/sdptidy.h"

int main(void) {
    char text[] = "v=0\no=- 1 1 IN IP4 192.0.2.1\ns=\nt=0 0\n";
    const SipString given = {(uint32_t)strlen(text), text};
    SDPTidyReport report;
    const int refused = SdpTidyText(&given, NULL, &report) != 0;
    const int repaired = report.ulNoOfRows == 1;
    SdpTidyRelease(&report);
    return refused || !repaired;
}
TEXT
cat >"$work/c/CMakeLists.txt" <<TEXT
cmake_minimum_required(VERSION 3.25)
project(c LANGUAGES C)
find_package(sdpline 1.0 CONFIG REQUIRED)
add_executable(answer $source/examples/answer.c)
target_link_libraries(answer PRIVATE sdpline::negotiate)
add_executable(tidy tidy.c)
target_link_libraries(tidy PRIVATE sdpline::tidy)
TEXT
cmake -S "$work/c" -B "$work/c/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_C_COMPILER="$cc" >/dev/null
cmake --build "$work/c/build" >/dev/null
"$work/c/build/tidy" || fail "the static tidy library does not repair a text"
"$work/c/build/answer" <"$source/examples/offer.sdp" | tr -d '\r' | diff "$source/examples/answer.sdp" -

# ---- Other settings
configure shared -DBUILD_SHARED_LIBS=ON
ninja -C "$work/shared" -t targets all >"$work/targets"
grep -q 'libsdpline\.so' "$work/targets" ||
  fail "BUILD_SHARED_LIBS=ON gives no shared library"
grep -q '^sdpline_program' "$work/targets" && fail "the program is built"
configure forced -DBUILD_SHARED_LIBS=ON -DSDPLINE_STATIC=ON
ninja -C "$work/forced" -t targets all >"$work/targets"
grep -q 'libsdpline\.so' "$work/targets" && fail "SDPLINE_STATIC=ON gives a shared library"
configure plain
[ "$(installed plain)" -eq 0 ] || fail "files are installed without being asked for"
echo "subproject: what the parent decides is left to it"
