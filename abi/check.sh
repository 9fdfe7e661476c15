#!/usr/bin/env bash
# Compares the binary interface with the files in this folder: the exported symbols exactly, and
# their types by abidiff. Every addition changes a list of symbols; a baseline of types belongs to one
# SOVERSION, so that changed types need a new one.
# usage: check.sh BUILD_DIR            compare; needs a build with debug information
#        check.sh --update BUILD_DIR   write new lists and baselines from the build
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
update=
if [ "${1:-}" = --update ]; then
  update=yes
  shift
fi
build=$1
status=0

symbols() { nm -D --defined-only "$1" | awk '{ print $3 }' | LC_ALL=C sort; }

for library in libsdpline libsipcore libsdpline_tidy libsdpline_negotiate; do
  case $library in
  libsdpline) folder=src ;;
  libsipcore) folder=src/sipcore ;;
  *) folder=src/${library#libsdpline_} ;;
  esac
  file=$build/$folder/$library.so
  soname=$(readelf -d "$file" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
  list=$here/$library.symbols
  baseline=$here/$soname.abi
  if [ -n "$update" ]; then
    symbols "$file" >"$list"
    abidw --headers-dir "$here/../include" --no-corpus-path --no-comp-dir-path --no-show-locs \
      --out-file "$baseline" "$file"
    continue
  fi
  if ! diff -u --label "$library.symbols" --label built "$list" <(symbols "$file"); then
    echo "$library exports other symbols than abi/$library.symbols says" >&2
    status=1
  fi
  if [ ! -e "$baseline" ]; then
    echo "there is no baseline for $soname: ./dev abi writes one" >&2
    status=1
  elif ! abidiff --headers-dir2 "$here/../include" --no-added-syms "$baseline" "$file"; then
    echo "$library changed its binary interface: raise SOVERSION, then ./dev abi" >&2
    status=1
  fi
done

# Only the core services, libc and the run-time libraries of the compiler may be imported.
undefined=$(nm -D --undefined-only "$build/src/libsdpline.so" | awk '{ print $NF }' |
  grep -vE '@GLIBC|@GCC|@CXXABI|@GLIBCXX|^(_ITM_.*|__cxa_finalize|__gmon_start__)$' || true)
foreign=$(comm -23 <(LC_ALL=C sort <<<"$undefined") "$here/libsipcore.symbols")
if [ -n "$foreign" ]; then
  echo "libsdpline imports other symbols than the core services: $foreign" >&2
  status=1
fi
needed=$(readelf -d "$build/src/libsdpline.so" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
  grep -vE '^(libsipcore|libc|libm|libstdc\+\+|libgcc_s|ld-linux-x86-64)\.so' || true)
if [ -n "$needed" ]; then
  echo "libsdpline needs $needed" >&2
  status=1
fi
[ $status -eq 0 ] && [ -z "$update" ] && echo "abi: as checked in"
exit $status
