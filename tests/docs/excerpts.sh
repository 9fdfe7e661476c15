#!/usr/bin/env bash
# Checks that the excerpts in documents are in their source files: every ```c or ```cpp block whose
# first line is "// from FILE" must consist of consecutive lines of FILE.
# usage: excerpts.sh SOURCE_DIR DOCUMENT...
set -euo pipefail
source=$1
shift
seen=0
failed=0
for document in "$@"; do
  file= block= inside=
  while IFS= read -r line; do
    case $line in
    '```c' | '```cpp') inside=first ;;
    '```')
      if [ "$inside" = yes ]; then
        seen=$((seen + 1))
        if [[ $'\n'$(<"$source/$file")$'\n' != *$'\n'"$block"* ]]; then
          printf '%s shows as a part of %s what is not in it:\n%s' "$document" "$file" "$block" >&2
          failed=1
        fi
      fi
      inside=
      ;;
    '// from '*)
      [ "$inside" = first ] && file=${line#// from } block= inside=yes
      ;;
    *)
      [ "$inside" = first ] && inside=other
      [ "$inside" = yes ] && block+=$line$'\n'
      ;;
    esac
  done <"$source/$document"
done
[ $seen -gt 0 ] || { echo "excerpts: the documents show none" >&2; exit 1; }
[ $failed -eq 0 ] && echo "excerpts: $seen are what the sources say"
exit $failed
