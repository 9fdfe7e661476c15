#!/usr/bin/env bash
# The folders in which the built files look for libraries must be relative to the files, and must
# not be empty, which means the working folder.
# usage: runpath.sh BUILD_DIR
set -euo pipefail
build=$1
looked=0
status=0
while read -r file; do
  path=$(readelf --wide --dynamic "$file" 2>/dev/null |
    sed -nE 's/.*\((RPATH|RUNPATH)\).*\[(.*)\]/x\2/p')
  looked=$((looked + 1))
  [ -n "$path" ] || continue
  while read -r element; do
    case $element in
    "\$ORIGIN" | "\$ORIGIN/"*) ;;
    *)
      echo "$file looks for libraries in '$element'" >&2
      status=1
      ;;
    esac
  done < <(tr ':' '\n' <<<"${path#x}")
done < <(find "$build" -name CMakeFiles -prune -o -type f -perm -u+x -exec \
  env LC_ALL=C grep -laP '\A\x7fELF' {} +)
[ $looked -ge 3 ] || { echo "only $looked files in $build" >&2; exit 1; }
[ $status -eq 0 ] && echo "runpath: $looked files look only where they were built"
exit $status
