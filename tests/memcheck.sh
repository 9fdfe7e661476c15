#!/usr/bin/env bash
# A test program under valgrind's memcheck: no use of uninitialised values, no access outside a
# block, no leaks.
# usage: memcheck.sh PROGRAM [GTEST_FLAGS]
set -euo pipefail
program=$1
shift
exec valgrind --quiet --error-exitcode=9 --leak-check=full --show-leak-kinds=definite,indirect \
  --errors-for-leak-kinds=definite,indirect --num-callers=20 "$program" --gtest_brief=1 "$@"
