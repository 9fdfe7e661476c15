#!/usr/bin/env bash
# Builds the library without libsipcore, as for a stack that has these services, and runs a program
# that defines them.
# usage: without_sipcore.sh SOURCE_DIR WORK_DIR CC CXX
set -euo pipefail
source=$1 work=$2 cc=$3 cxx=$4

cmake -S "$source" -B "$work" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 \
  -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" -DSDPLINE_SIPCORE=OFF \
  -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DSDPLINE_TESTS=OFF -DSDPLINE_TOOLS=OFF >/dev/null
cmake --build "$work" -j2 >/dev/null
library=$work/src/libsdpline.so

# Stored first: a search that ends early would end the reader by SIGPIPE.
dynamic=$(readelf -d "$library")
if [ -e "$work/src/sipcore" ] || grep -q sipcore <<<"$dynamic"; then
  echo "libsipcore was built or is needed" >&2
  exit 1
fi
imports=$(nm -D --undefined-only "$library")
for service in SipMmCreateBufMem SipSbCopyChar SipSmStringNCmp memset_s g_gpfnSipLmLogHndlr; do
  if ! grep -qw "$service" <<<"$imports"; then
    echo "$service is not imported" >&2
    exit 1
  fi
done
"$cc" -std=c11 -Wall -Wextra -Wpedantic -Werror -I"$source/include" -rdynamic \
  "$source/tests/link/replaced_services.c" -L"$work/src" -lsdpline -Wl,-rpath,'$ORIGIN/src' \
  -o "$work/replaced_services"
"$work/replaced_services"
