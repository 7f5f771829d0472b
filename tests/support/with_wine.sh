#!/usr/bin/env bash
# with_wine.sh [--time-limit SECONDS] [--trust CA.pem]... PROGRAM.exe [ARGUMENT...]
#
# Runs a GoogleTest program that was built for Windows in a fresh Wine machine (see
# wine_machine.sh) that goes away with it. The program's folder is its drive Y:.
#
# Succeeds only when the program itself says that its tests passed: its exit code alone tells
# nothing, since Wine reports success for a program that it could not run at all. After the time
# limit (100 seconds) the program is killed. The authority in TOLVAN_TEST_CA, when it is set, is
# trusted too.
set -uo pipefail

support=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
limit=100 trusted=()
[ -z "${TOLVAN_TEST_CA:-}" ] || trusted+=(--trust "$TOLVAN_TEST_CA")
while [ $# -gt 0 ]; do
  case "$1" in
    --time-limit) limit=$2; shift 2 ;;
    --trust) trusted+=(--trust "$2"); shift 2 ;;
    *) break ;;
  esac
done
if [ $# -eq 0 ]; then
  sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0" >&2
  exit 2
fi
program=$(readlink -f "$1")
shift

# Machines are named after the process that owns them, so that those of a killed run are known.
folder=${TMPDIR:-/tmp}
for left in "$folder"/tolvan-wine.*; do
  owner=${left#*tolvan-wine.}
  [ ! -d "$left" ] || kill -0 "${owner%%.*}" 2>/dev/null || "$support/wine_machine.sh" "$left" end
done
machine=$(mktemp -d "$folder/tolvan-wine.$$.XXXXXX")
trap '"$support/wine_machine.sh" "$machine" end' EXIT
trap 'exit 143' INT TERM HUP

"$support/wine_machine.sh" "$machine" init "${trusted[@]}" || exit
"$support/wine_machine.sh" "$machine" map y "$(dirname "$program")" || exit
timeout --kill-after=5 "$limit" \
  "$support/wine_machine.sh" "$machine" run "Y:\\${program##*/}" "$@" </dev/null |
  sed -u 's/\r$//' | tee "$machine/output"
code=${PIPESTATUS[0]}

if [ "$code" = 124 ] || [ "$code" = 137 ]; then
  echo "with_wine.sh: killed after $limit seconds" >&2
  exit 1
fi
if ! grep -q '^\[  PASSED  \] [1-9]' "$machine/output" || grep -q '^\[  FAILED  \]' "$machine/output"
then
  echo "with_wine.sh: the program did not report that its tests passed (exit code $code)" >&2
  exit 1
fi
exit "$code"
