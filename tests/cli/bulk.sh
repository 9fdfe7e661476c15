#!/usr/bin/env bash
# Many captures and large ones: bulk.sh PROGRAM SOURCE_DIR MAKECAPTURE
makecapture=$3
. "$(dirname "$0")/expect.sh"

# limited KB COMMAND...: runs the command with an address space of KB kilobytes.
limited() { (ulimit -v "$1" && shift && "$@"); }

# ---- The memory does not depend on the size of the input
expect "180 MB from a pipe" 0 '~^checked 782 bodies in 1 file: none refused$' nothing -- \
  limited 60000 sh -c '"$2" bulk 180 | "$1" check' _ "$program" "$makecapture"

# ---- Several inputs at once: the output of one after the other
mkdir many
for i in $(seq 1 12); do
  case $i in
  3) "$makecapture" trace 1 ;;
  *2) cat bad.sdp ;;
  *[159]) "$makecapture" transports ;;
  *7) "$makecapture" unread ;;
  *) "$makecapture" calls ;;
  esac >"many/$i"
done
: >many/empty
for command in check "check --json" "check --redact" decode format calls "calls --verbose"; do
  # shellcheck disable=SC2086 # a command and its options
  "$program" $command -j 1 many >one.out 2>one.err
  status=$?
  for jobs in 2 16; do
    # shellcheck disable=SC2086
    expect "$command -j $jobs" $status one.out one.err -- "$program" $command -j $jobs many
  done
done
expect "files that cannot be read among them" 2 - '~^sdpline: none: No such file or directory$' -- \
  "$program" check -j 4 many/1 none many/2
finish
