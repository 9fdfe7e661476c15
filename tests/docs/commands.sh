#!/usr/bin/env bash
# Runs the commands of a document that shows their output, and compares the output: every ```sh
# block that is directly followed by a ```text block. A ```c block that begins with "/* name.c", or
# a ```cpp block that begins with "// name.cpp", is written to that file for the commands below it.
# The commands find the headers, the libraries, the program sdpline and examples/ as if they were
# installed. TREE is the folder of a build, or a prefix that sdpline is installed in.
# usage: commands.sh SOURCE_DIR TREE CC CXX DOCUMENT...
set -euo pipefail
source=$1 tree=$2 cc=$3 cxx=$4
shift 4
cd "$source" # documents may be named from there
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir "$work/bin"
ln -s "$(command -v "$cc")" "$work/bin/cc"
ln -s "$(command -v "$cxx")" "$work/bin/c++"
include=$source/include program=$tree/cli/sdpline libraries=$tree/src:$tree/src/sipcore
if [ -d "$tree/include" ]; then
  include=$tree/include program=$tree/bin/sdpline
  libraries=$(dirname "$(find "$tree" -name libsdpline.so)")
fi
ln -s "$program" "$work/bin/sdpline"
export PATH=$work/bin:$PATH CPATH=$include LIBRARY_PATH=$libraries LD_LIBRARY_PATH=$libraries

# Writes the blocks of a document into the folder: N.sh with N.text, and files by name.
cut_blocks() { # DOCUMENT FOLDER
  awk -v folder="$2" '
    function finish() { if (kind == "sh") shell = text
      else if (kind == "text" && shell != "") { ++n
        printf "%s", shell >(folder "/" n ".sh"); printf "%s", text >(folder "/" n ".text") }
      else if (kind ~ /^c(pp)?$/ && split(text, word, /[ :\n]/) && word[1] ~ /^\/[*\/]$/ &&
               word[2] ~ ("\\." kind "$"))
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
