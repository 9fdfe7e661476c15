#!/usr/bin/env bash
# Runs the commands that a document shows with their output, and compares the two: every ```sh block
# that a ```text block follows directly. A ```c block that begins with "/* name.c" is that file to the
# commands below it. They find the headers, the libraries, the program sdpline and examples/ of the
# build as a user finds installed ones.
# usage: commands.sh SOURCE_DIR BUILD_DIR CC DOCUMENT...
set -euo pipefail
source=$1 build=$2 cc=$3
shift 3
cd "$source" # documents may be named from there
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir "$work/bin"
ln -s "$(command -v "$cc")" "$work/bin/cc"
ln -s "$build/cli/sdpline" "$work/bin/sdpline"
export PATH=$work/bin:$PATH CPATH=$source/include
export LIBRARY_PATH=$build/src:$build/src/sipcore LD_LIBRARY_PATH=$build/src:$build/src/sipcore

# Writes the blocks of a document into the folder: N.sh with N.text, and files by name.
cut_blocks() { # DOCUMENT FOLDER
  awk -v folder="$2" '
    function finish() { if (kind == "sh") shell = text
      else if (kind == "text" && shell != "") { ++n
        printf "%s", shell >(folder "/" n ".sh"); printf "%s", text >(folder "/" n ".text") }
      else if (kind == "c" && split(text, word, /[ :\n]/) && word[1] == "/*" && word[2] ~ /\.c$/)
        printf "%s", text >(folder "/" word[2])
      if (kind != "sh") shell = "" }
    /^```/ { if (inside) { finish(); inside = 0 } else { inside = 1; kind = substr($0, 4); text = "" }
      next }
    inside { text = text $0 "\n"; next }
    /[^ ]/ { shell = "" }' "$1"
}

ran=0
failed=0
for document in "$@"; do
  folder=$work/$(basename "$document" .md)
  mkdir "$folder"
  ln -s "$source/examples" "$folder/examples"
  cut_blocks "$document" "$folder"
  for ((n = 1; ; ++n)); do
    [ -e "$folder/$n.sh" ] || break
    (cd "$folder" && bash "./$n.sh") >"$folder/$n.out" 2>&1 || true # a refused body is an example too
    if ! diff -u --label "$document" --label printed "$folder/$n.text" "$folder/$n.out"; then
      echo "commands: these printed something else:" >&2
      cat "$folder/$n.sh" >&2
      failed=1
    fi
    ran=$((ran + 1))
  done
done
[ $ran -gt 0 ] || { echo "commands: the documents show none" >&2; exit 1; }
[ $failed -eq 0 ] && echo "commands: $ran blocks print what is printed in the documents"
exit $failed
