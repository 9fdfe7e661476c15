#!/usr/bin/env bash
# Builds examples/ against an installed sdpline, with CMake and with pkg-config, and checks that
# both programs answer an offer and refuse a bad one.
# usage: consumers.sh EXAMPLES PREFIX WORK_DIR CC CXX [--static]
set -euo pipefail
examples=$1 prefix=$2 work=$3 cc=$4 cxx=$5 static=${6:-}
modules=$(dirname "$(find "$prefix" -name sdpline.pc)")
libraries=$(dirname "$modules")
flags="-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror"
mkdir -p "$work"

fail() {
  echo "consumers: $*" >&2
  exit 1
}

# Checks that an example finds its libraries in that prefix and prints what is expected.
try() { # PROGRAM
  local loaded
  loaded=$(ldd "$1")
  case $static$loaded in
  --static*libsdpline* | --static*libsipcore*) fail "$1 is not linked statically" ;;
  --static* | *"libsdpline.so.1 => $libraries/"*) ;;
  *) fail "$1 loads another libsdpline" ;;
  esac
  "$1" <"$examples/offer.sdp" | tr -d '\r' | diff "$examples/answer.sdp" -
  local said status=0
  said=$(sed 's/^c=.*/c=IN IP4 192.0.2.256/' "$examples/offer.sdp" | "$1" 2>&1) || status=$?
  [ "$status" -eq 1 ] || fail "$1 ends with $status on a bad offer"
  case $said in
  'answer: 4:18: expected an octet of at most 255'*) ;;
  *) fail "$1 says of a bad offer: $said" ;;
  esac
}

# The build of this folder against the same prefix is kept if nothing changed: an archive that was
# installed again is linked again, but nothing is compiled again.
built=$(cat "$work/prefix" 2>/dev/null || true)
[ "$built" = "$prefix" ] || rm -rf "$work/cmake" "$work"/*.o
echo "$prefix" >"$work/prefix"

# By CMake
cmake -S "$examples" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$cc" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF >/dev/null
grep -q "^sdpline_DIR:PATH=$libraries/cmake/sdpline\$" "$work/cmake/CMakeCache.txt" ||
  fail "CMake found another sdpline than that in $prefix"
cmake --build "$work/cmake" -j2 >"$work/build" || fail "$(cat "$work/build")"
ctest --test-dir "$work/cmake" --output-on-failure >"$work/ctest" || fail "$(cat "$work/ctest")"
try "$work/cmake/answer_c"
try "$work/cmake/answer_cpp"

# By pkg-config
export PKG_CONFIG_PATH=$modules LD_LIBRARY_PATH=$libraries
build() { # LANGUAGE COMPILER STANDARD
  local object=$work/answer.$1.o changed=here
  [ ! -e "$object" ] || changed=$(find "$prefix/include" -newer "$object")
  # shellcheck disable=SC2046,SC2086 # flags are words
  {
    [ -z "$changed" ] ||
      "$2" "-std=$3" $flags $(pkg-config --cflags sdpline-negotiate) -c "$examples/answer.$1" \
        -o "$object"
    "$2" "$object" $(pkg-config $static --libs sdpline-negotiate) -o "$work/answer_$1"
  }
}
build c "$cc" c11
build cpp "$cxx" c++20
try "$work/answer_c"
try "$work/answer_cpp"
echo "consumers: built and run against $prefix"
