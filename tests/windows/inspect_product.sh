#!/usr/bin/env bash
# inspect_product.sh PROGRAM.exe MACHINE BUILD
# Checks a launcher that was built for Windows without running it. MACHINE is i386 or x86-64, BUILD
# is release or developer: a developer build has to show the very texts that a release must not hold,
# which keeps that check honest.
set -uo pipefail
export LC_ALL=C
program=$1 machine=$2 build=$3
objdump=x86_64-w64-mingw32-objdump
failures=0

# check WHAT COMMAND...: says which promise is broken.
check() {
  local what=$1
  shift
  if "$@"; then
    echo "ok: $what"
  else
    echo "BROKEN: $what"
    failures=$((failures + 1))
  fi
}

headers=$("$objdump" -f -p "$program") || exit 1
resources=$(mktemp)
trap 'rm -f "$resources"' EXIT
x86_64-w64-mingw32-objcopy -O binary --only-section=.rsrc "$program" "$resources" || exit 1

in_headers() { grep -qF -- "$1" <<<"$headers"; }
in_resources() { grep -qaF -- "$1" "$resources"; }
# Sizes of the resources of a type and id, from the tree that objdump shows.
sizes_of() {
  awk -v type="$1" -v id="$2" '
    /^ *[0-9a-f]+   Entry: ID:/ { inType = $4 == type "," }
    /^ *[0-9a-f]+     Entry: ID:/ { inName = inType && $4 == id "," }
    /Leaf:/ && inName { print substr($6, 1, length($6) - 1) }' <<<"$headers"
}
has_resource() { [ -n "$(sizes_of "$1" "$2")" ]; }
has_marker() { [ "$(sizes_of 0x00000a 0x000001)" = 0x00000f ] && in_resources TOLVAN-LAUNCHER; }
imports_only_system_libraries() {
  local strange
  strange=$(sed -n 's/^\tDLL Name: //p' <<<"$headers" | tr A-Z a-z |
    grep -vxE '(advapi32|kernel32|msvcrt|ole32|oleaut32|shell32|user32|gdi32|wininet|winmm|gdiplus|windowscodecs|dwrite|d2d1|d3d10_1|dxgi|mfplat|mfreadwrite|ntdll|shlwapi|winmm)\.dll')
  [ -z "$strange" ] || { echo "imports $strange"; return 1; }
}
# In one-byte and in two-byte text.
holds() { { strings -n 6 "$program"; strings -n 6 -el "$program"; } | grep -E -- "$1" >/dev/null; }
lacks() { ! holds "$1"; }

check "is built for $machine" in_headers "file format pei-$machine"
check 'has no console' in_headers '(Windows GUI)'
check 'may be loaded anywhere and runs no data' eval 'in_headers DYNAMIC_BASE && in_headers NX_COMPAT'
check 'imports only libraries of the system' imports_only_system_libraries
check 'carries the marker' has_marker
check 'has a manifest' has_resource 0x000018 0x000001
check 'demands administrator rights' in_resources 'level="requireAdministrator"'
check 'draws for each monitor' in_resources '>true/pm</dpiAware>'
check 'has a version' has_resource 0x000010 0x000001
check 'holds its server addresses' holds '^https?://.*/$'
switches='TOLVAN_[A-Z]'
case "$build" in
  release) check 'takes nothing from the environment that is for developers' lacks "$switches" ;;
  developer) check 'takes what is for developers from the environment' holds "$switches" ;;
esac
[ "$failures" -eq 0 ]
