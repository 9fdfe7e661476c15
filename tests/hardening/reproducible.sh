#!/usr/bin/env bash
# Builds the libraries again from a copy of the sources in another folder, and compares them byte by
# byte with those of the build.
# usage: reproducible.sh SOURCE_DIR BUILD_DIR CC CXX [CMAKE_OPTION...]
set -euo pipefail
source=$1 build=$2 cc=$3 cxx=$4
shift 4
work=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$work"' EXIT

copy=$work/sources/elsewhere
mkdir -p "$copy/docs"
for part in CMakeLists.txt LICENSE src include cmake packaging completion docs/man; do
  cp -R "$source/$part" "$copy/$part"
done
CCACHE_DISABLE=1 cmake -S "$copy" -B "$work/build" -G Ninja -DCMAKE_C_COMPILER="$cc" \
  -DCMAKE_CXX_COMPILER="$cxx" -DSDPLINE_TESTS=OFF -DSDPLINE_TOOLS=OFF "$@" >/dev/null
CCACHE_DISABLE=1 cmake --build "$work/build" >/dev/null

compared=0
while read -r library; do
  if ! cmp "$library" "$build/${library#"$work/build/"}"; then
    echo "reproducible: another folder gives another ${library##*/}" >&2
    exit 1
  fi
  compared=$((compared + 1))
done < <(find "$work/build" -name CMakeFiles -prune -o -type f \( -name 'lib*.so.*' -o -name 'lib*.a' \) -print)
[ $compared -ge 2 ] || { echo "reproducible: $compared libraries were built" >&2; exit 1; }
echo "reproducible: $compared libraries are the same in two folders"
