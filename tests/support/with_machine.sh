#!/usr/bin/env bash
# with_machine.sh PROGRAM [ARGUMENT...]
# Runs a program in a fresh host machine with two drives, which goes away with it. A copy of the
# program lies in the machine where the host adapter says that it runs from.
set -euo pipefail
machine=$(mktemp -d "${TMPDIR:-/tmp}/tolvan-machine.XXXXXX")
trap 'rm -rf "$machine"' EXIT
export TOLVAN_MACHINE=$machine
programs="$machine/drive_c/Program Files (x86)/Tolvan Tests"
mkdir -p "$programs" "$machine/drive_d"
ln -- "$1" "$programs" 2>/dev/null || cp -- "$1" "$programs"
"$@"
