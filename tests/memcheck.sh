#!/usr/bin/env bash
# A test program under valgrind's memcheck: nothing uninitialised decides, nothing beyond a block
# is touched, nothing is lost.
# usage: memcheck.sh PROGRAM [GTEST_FLAGS]
set -euo pipefail
program=$1
shift
exec valgrind --quiet --error-exitcode=9 --leak-check=full --show-leak-kinds=definite,indirect \
  --errors-for-leak-kinds=definite,indirect --num-callers=20 "$program" --gtest_brief=1 "$@"
