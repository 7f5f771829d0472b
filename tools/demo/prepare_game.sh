#!/usr/bin/env bash
# prepare_game.sh CACHE
# Makes CACHE/game, a folder of real game files to publish: the data of a free game from Debian's
# package hedgewars-data (145 MB, several thousand files), which is fetched, not installed. What is
# in the cache already is used again. Prints the folder's name on the standard output.
set -euo pipefail

package=hedgewars-data
if [ $# -ne 1 ] || [[ $1 == -* ]]; then
    sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0"
    [ "${1:-}" = --help ]
    exit
fi
mkdir -p "$1"
cd "$1"
if [ ! -d game ]; then
    work=$(mktemp -d ./preparing.XXXXXX)
    trap 'rm -rf "$work"' EXIT
    archive=$(find . -maxdepth 1 -name "${package}_*.deb" -print -quit)
    if [ -z "$archive" ]; then
        echo "prepare_game.sh: fetching $package" >&2
        # Fetched under a name of its own first, so that a broken download is never taken for whole.
        (cd "$work" && apt-get -q -o APT::Sandbox::User=root download "$package") >&2 || {
            echo "prepare_game.sh: apt-get could not fetch $package (apt-get update may help)" >&2
            exit 1
        }
        mv "$work/$package"_*.deb .
        archive=$(find . -maxdepth 1 -name "${package}_*.deb" -print -quit)
    fi
    dpkg -x "$archive" "$work/package"
    # Links lead to fonts of other packages.
    find "$work/package" -type l -delete
    mv -T "$work/package/usr/share/games/hedgewars/Data" game
fi
echo "$PWD/game"
