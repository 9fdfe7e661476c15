#!/usr/bin/env bash
# Installs the build into a scratch prefix, moves that, and builds the consumers against it. (Static
# libraries are installed and used by subproject.sh.)
# usage: install.sh SOURCE_DIR BUILD_DIR CC CXX
set -euo pipefail
source=$1 build=$2 cc=$3 cxx=$4
work=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$work"' EXIT
consumers=$source/tests/install/consumers.sh

fail() {
  echo "install: $*" >&2
  exit 1
}

# Whether each C header compiles alone, and nothing in the prefix names a folder of the build.
look() { # PREFIX
  local header
  for header in "$1"/include/sdpline/*.h; do
    "$cc" -std=c11 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I"$1/include" -x c "$header"
  done
  # One sentence for a compiler that is too old, instead of a page of what it stumbles over.
  local said
  said=$("$cxx" -std=c++17 -fsyntax-only -I"$1/include" -x c++ "$1/include/sdpline/sdpline.hpp" 2>&1 |
    grep 'error:' || true)
  [[ $(wc -l <<<"$said") -eq 1 && $said = *"needs C++20"* ]] || fail "sdpline.hpp under C++17: $said"
  diff <(cd "$source/include" && find sdpline -type f | sort) \
    <(cd "$1/include" && find sdpline -type f | sort)
  if grep -rIlF -e "$source" -e "$build" -e "$work" "$1"; then
    fail "the files above name a folder of the build"
  fi
}

cmake --install "$build" --prefix "$work/first" >/dev/null
look "$work/first"
for file in share/man/man1/sdpline.1 share/bash-completion/completions/sdpline \
  share/zsh/site-functions/_sdpline share/fish/vendor_completions.d/sdpline.fish; do
  [ -s "$work/first/$file" ] || fail "$file is not there"
done

# Nothing in it names the folder that it was installed in, as `look` has seen.
mv "$work/first" "$work/moved"
"$consumers" "$source/examples" "$work/moved" "$work/consumers" "$cc" "$cxx"
"$work/moved/bin/sdpline" check "$source/examples/offer.sdp" >/dev/null ||
  fail "the program does not run where it was moved to"

# The name that programs ask for is the beginning of the file's.
while read -r library; do
  soname=$(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
  [[ ${library##*/} = "$soname".* ]] || fail "${library##*/} is asked for as $soname"
done < <(find "$work/moved" -type f -name 'lib*.so.*')

echo "install: what is installed serves consumers where it is moved"
