#!/usr/bin/env bash
# Makes the Debian packages of a build, checks them with lintian, and installs, uses and removes them
# in a scratch root with a copy of the package database of this machine: dependencies are checked, and
# the machine is not changed.
# usage: check.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
source=$1 build=$2
work=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$work"' EXIT
root=$work/root names="libsdpline1 libsdpline-dev sdpline"

fail() {
  echo "packages: $*" >&2
  exit 1
}

rm -f "$build"/*.deb
(cd "$build" && cpack -G DEB >/dev/null 2>&1) || fail "cpack -G DEB fails in $build"
for name in $names; do
  [ -s "$(echo "$build/$name"_*.deb)" ] || fail "there is no package $name"
done
as_root=()
[ "$(id -u)" -ne 0 ] || as_root=(--allow-root)
lintian "${as_root[@]}" --fail-on error,warning "$build"/*.deb

# A field of a package, and the files in it.
field() { dpkg-deb --field "$(echo "$build/$1"_*.deb)" "$2"; }
for name in $names; do
  wanted=same
  [ "$name" != sdpline ] || wanted=foreign
  [ "$(field "$name" Multi-Arch)" = $wanted ] || fail "$name is not Multi-Arch: $wanted"
done
dpkg-deb --control "$build"/libsdpline1_*.deb "$work/control"
for library in "$build"/src/libsdpline.so "$build"/src/sipcore/libsipcore.so; do
  soname=$(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
  diff <(sed -n "/^$soname /,/^lib/s/^ \(.*\)@Base 1.0.0/\1/p" "$work/control/symbols") \
    <(nm -D --defined-only "$library" | awk '{ print $3 }' | sort) || fail "other symbols than $soname"
done
dpkg-deb --contents "$build"/libsdpline-dev_*.deb >"$work/contents"
for file in examples/answer.c examples/CMakeLists.txt integration.md grammar.md; do
  grep -q "/libsdpline-dev/.*$file" "$work/contents" ||
    fail "libsdpline-dev has no $file"
done
dpkg-deb --contents "$build"/sdpline_*.deb >"$work/contents"
for file in man/man1/sdpline.1.gz bash-completion/completions/sdpline \
  zsh/vendor-completions/_sdpline fish/vendor_completions.d/sdpline.fish; do
  grep -q "/usr/share/$file" "$work/contents" || fail "sdpline has no $file"
done

# The package database of the machine, without triggers, which would run in the scratch root.
mkdir -p "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info"
cp /var/lib/dpkg/status "$root/var/lib/dpkg/"
cp /var/lib/dpkg/info/format /var/lib/dpkg/info/*.list "$root/var/lib/dpkg/info/"
in_root() { dpkg --root="$root" --force-not-root --force-bad-path "$@"; }
in_root --log="$work/log" --install "$build"/*.deb >/dev/null
# The loader does not search the scratch root, so LD_LIBRARY_PATH names the folder of the libraries.
LD_LIBRARY_PATH=$(dirname "$(find "$root/usr" -name libsdpline.so.1)")
export LD_LIBRARY_PATH
"$root/usr/bin/sdpline" check "$source/examples/offer.sip"
"$source/tests/install/consumers.sh" "$source/examples" "$root/usr" "$work/gcc" gcc g++
"$source/tests/install/consumers.sh" "$source/examples" "$root/usr" "$work/clang" clang clang++
"$source/tests/docs/readme.sh" "$source" "$root/usr" gcc g++

# shellcheck disable=SC2086 # names are words
in_root --log="$work/log" --purge $names >/dev/null
left=$(find "$root" -path "$root/var/lib/dpkg" -prune -o ! -type d -print)
[ -z "$left" ] || fail "removing the packages leaves $left"
echo "packages: made, installed, used and removed"
