#!/usr/bin/env bash
# compare.sh HOST_GALLERY WINDOWS_GALLERY FOLDER [LIMIT]
#
# Draws the gallery's pictures with the gallery programs of a host build and of a Windows build
# (under Wine) and compares them: prints which share of the pixels differs, and writes the page
# FOLDER/index.html with both and their differences side by side. Fails when more than LIMIT per
# cent of the pixels differ, texts apart (default 0.5).
set -euo pipefail
[ $# -ge 3 ] || { sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0" >&2; exit 2; }

tools=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
support=$tools/../../tests/support
# Direct2D under Wine draws with the help of a display.
[ "${TOLVAN_WINE_GRAPHICS:-}" = x11 ] || exec "$support/with_display.sh" "$0" "$@"

host=$(readlink -f "$1") windows=$(readlink -f "$2") limit=${4:-0.5}
mkdir -p "$3"
folder=$(cd "$3" && pwd)
fonts=/usr/share/fonts/opentype

for version in host windows; do rm -rf "$folder/$version" "$folder/$version-textless"; done
rm -rf "$folder/differences"
"$host" "$folder/host"
"$host" --without-text "$folder/host-textless"

machine=$(mktemp -d "${TMPDIR:-/tmp}/tolvan-wine.$$.XXXXXX")
on_machine() { "$support/wine_machine.sh" "$machine" "$@"; }
trap 'on_machine end' EXIT
on_machine init
on_machine map y "$(dirname "$windows")"
on_machine map f "$fonts"
on_machine map o "$folder"
draw() { on_machine run "Y:\\${windows##*/}" --fonts 'F:\' "$@"; }
draw 'O:\windows'
draw --without-text 'O:\windows-textless'

code=0
"$host" --compare "$folder" --limit "$limit" || code=$?
python3 "$tools/make_page.py" "$folder"
exit "$code"
