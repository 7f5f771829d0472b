#!/usr/bin/env bash
# Whether the Windows tests can be believed: what Wine does not run is refused, and with_wine.sh takes
# nothing for passed that did not say so.
set -uo pipefail
support=$(cd "$(dirname "${BASH_SOURCE[0]}")/../support" && pwd)
work=$(mktemp -d)
machine=$work/machine
on_machine() { "$support/wine_machine.sh" "$machine" "$@"; }
trap 'on_machine end; rm -rf "$work"' EXIT
failures=0

# expect WHAT EXPECTED GOT
expect() {
  if [ "$2" = "$3" ]; then
    echo "ok: $1"
  else
    echo "FAILED: $1: expected [$2], got [$3]"
    failures=$((failures + 1))
  fi
}
code_of() { "$@" >/dev/null 2>&1; echo $?; }

on_machine init || exit 1
# An image for 32-bit machines, of which only the headers count.
printf 'MZ%58s\x40\0\0\0PE\0\0\x4c\x01%300s' '' '' >"$machine/drive_c/small.exe"
expect 'a 32-bit program is refused' 125 "$(code_of on_machine run 'C:\small.exe')"

system=$machine/drive_c/windows/system32
expect 'a program that tells nothing of tests has failed' 1 \
       "$(code_of "$support/with_wine.sh" "$system/hostname.exe")"
printf '@echo [  PASSED  ] 3 tests.\r\n@exit 3\r\n' >"$machine/drive_c/lie.bat"
mkdir "$work/bin"
cp "$system/cmd.exe" "$work/bin"
cp "$machine/drive_c/lie.bat" "$work/bin"
expect 'a program that passes and then fails has failed' 3 \
       "$(code_of "$support/with_wine.sh" "$work/bin/cmd.exe" /c 'Y:\lie.bat')"
expect 'a program that does not end is killed' 1 \
       "$(code_of "$support/with_wine.sh" --time-limit 2 "$work/bin/cmd.exe" /c pause)"

[ "$failures" -eq 0 ]
