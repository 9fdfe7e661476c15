#!/usr/bin/env bash
# Builds the reference of the public headers; a warning of Doxygen is a failure. The pages are
# searched too, because comments that the filter loses cause no warning.
# usage: doxygen.sh SOURCE_DIR
set -euo pipefail
cd "$1"
DOXYGEN_OUTPUT=$(mktemp -d)
export DOXYGEN_OUTPUT
trap 'rm -rf "$DOXYGEN_OUTPUT"' EXIT

doxygen docs/Doxyfile
look() { # PAGE TEXT
  grep -q "$2" "$DOXYGEN_OUTPUT/html/$1" || { echo "doxygen: $1 does not say \"$2\"" >&2; exit 1; }
}
look sdpline_8h.html 'Decodes <a class="el"\|Decodes pstSdpText'
look sdprecords_8h.html 'milliseconds'
look sipcore_8h.html 'porting guide'
look structSDPConnection.html 'no TTL or no number of addresses'
look classsdpline_1_1v1_1_1Body.html 'tells the line and column of the text'
look structsdpline_1_1v1_1_1Error.html 'All text is static'
echo "doxygen: no warnings"
