#!/usr/bin/env bash
# What docs/architecture.md says of a new attribute of a known shape: adds two to a scratch copy of
# the sources, a text and a keyword, in the files named there and in no other, builds the library and
# has them decoded, copied and written.
# usage: newattribute.sh SOURCE_DIR SCRATCH_DIR CC CXX
set -euo pipefail
source=$1
scratch=$2
export CC=$3 CXX=$4
rm -rf "$scratch"
mkdir -p "$scratch"
cp -r "$source"/{CMakeLists.txt,CMakePresets.json,cmake,include,src} "$scratch"
cd "$scratch"

change() { # FILE SED_SCRIPT
  grep -q "\`.*$(basename "$1")\`" "$source/docs/architecture.md"
  cp "$1" before
  sed -i "$2" "$1"
  ! cmp -s before "$1" || { echo "newattribute: nothing to change in $1" >&2; exit 1; }
}
change include/sdpline/sdprecords.h \
  's/SDP_ATTR_UNKNOWN = 41/SDP_ATTR_NOTE = 41, SDP_ATTR_ROLE = 42, SDP_ATTR_UNKNOWN = 43/'
change include/sdpline/sdpline.h 's/sstrSdpAttrNames\[40\]/sstrSdpAttrNames[42]/'
change include/sdpline/cpp/detail/attributes.def \
  '$a ATTRIBUTE(SDP_ATTR_NOTE, Note, "x-note:", Text, kNoWords, kRegular)\
ATTRIBUTE(SDP_ATTR_ROLE, Role, "x-role:", Keyword, kSetupWords, kRegular)'

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 \
  -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DSDPLINE_TESTS=OFF -DSDPLINE_TOOLS=OFF -DSDPLINE_INSTALL=OFF >/dev/null
cmake --build build --target sdpline >/dev/null
cat >case.c <<'TEXT'
#include <string.h>

#include <sdpline/sdpcopy.h>
#include <sdpline/sdpline.h>

/* Whether the attribute is written so. */
static int is_written(void *attribute, const char *line) {
    uint32_t prefixed = 1;
    SipRefString *written = NULL;
    if (SdpLibEncodeSdpLine(&prefixed, SDP_LINE_ATTRIBUTE, attribute, &written) != 0) {
        return 0;
    }
    const size_t length = SipSmGetLenFromRefString(written);
    const int same = length == strlen(line) &&
                     memcmp(SipSmGetDataFromRefString(written), line, length) == 0;
    SipSmReleaseRefString(written);
    return same;
}

int main(void) {
    static char bytes[] = "v=0\no=- 1 1 IN IP4 x\ns=-\nt=0 0\na=x-note:seen\na=x-role:active\n";
    const SipString text = {sizeof bytes - 1, bytes};
    void *copy = NULL;
    SdpLine *line = NULL;
    if (SdpLibDecodeSdp(&text, &line) != 0) {
        return 1;
    }
    SDPAttr *const attr = line->pstAttrList->ppstAttrs[0];
    if (attr->ulAttrType != SDP_ATTR_NOTE || attr->unAttrValue.strValue.ulLen != 4) {
        return 2;
    }
    if (SdpCloneLine(line->pstMemCp, SDP_LINE_ATTRIBUTE, attr, &copy) != 0 ||
        ((SDPAttr *)copy)->unAttrValue.strValue.pcData == attr->unAttrValue.strValue.pcData) {
        return 3;
    }
    if (!is_written(copy, "a=x-note:seen\r\n")) {
        return 4;
    }
    SDPAttr *const role = line->pstAttrList->ppstAttrs[1];
    if (role->ulAttrType != SDP_ATTR_ROLE || role->unAttrValue.ulValue != SDP_T120_ACTIVE) {
        return 6;
    }
    if (!is_written(role, "a=x-role:active\r\n")) {
        return 7;
    }
    return SdpLibReleaseSdp(&line) == 0 ? 0 : 5;
}
TEXT
"$CC" -std=c11 -Iinclude case.c -o case -Lbuild/src -Lbuild/src/sipcore -lsdpline -lsipcore
LD_LIBRARY_PATH=build/src:build/src/sipcore ./case
echo "newattribute: decoded, copied and written after changes to the files named"
