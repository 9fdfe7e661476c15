#!/usr/bin/env bash
# Installs the build into a scratch prefix, moves the prefix, and builds the consumers against it.
# subproject.sh installs and uses static libraries.
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

# Checks that each C header compiles alone, and that no file in the prefix names a folder of the
# build.
look() { # PREFIX
  local header
  for header in "$1"/include/sdpline/*.h; do
    "$cc" -std=c11 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I"$1/include" -x c "$header"
  done
  # A compiler that is too old gets one message instead of many errors.
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

# No file names the folder of the installation, as `look` has checked.
mv "$work/first" "$work/moved"
"$consumers" "$source/examples" "$work/moved" "$work/consumers" "$cc" "$cxx"
"$work/moved/bin/sdpline" check "$source/examples/offer.sdp" >/dev/null ||
  fail "the program does not run where it was moved to"

# The SONAME is the beginning of the file name.
while read -r library; do
  soname=$(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
  [[ ${library##*/} = "$soname".* ]] || fail "${library##*/} is asked for as $soname"
done < <(find "$work/moved" -type f -name 'lib*.so.*')

echo "install: what is installed serves consumers where it is moved"
