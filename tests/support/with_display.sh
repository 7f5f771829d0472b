#!/usr/bin/env bash
# with_display.sh COMMAND [ARGUMENT...]
# Runs a command on an X display of its own, with a window manager, and ends with the command's exit
# code. Wine machines in it show their windows there.
set -euo pipefail

work=$(mktemp -d "${TMPDIR:-/tmp}/tolvan-display.XXXXXX")
server= manager=
finish() {
  [ -z "$manager" ] || { kill "$manager" && wait "$manager"; } 2>/dev/null || true
  [ -z "$server" ] || { kill "$server" && wait "$server"; } 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 143' INT TERM HUP

# Both go with this script, also when the script is killed.
setpriv --pdeathsig TERM Xvfb -displayfd 3 -noreset -nolisten tcp -screen 0 1024x768x24 \
  3>"$work/number" 2>"$work/server.log" &
server=$!
until [ -s "$work/number" ]; do
  kill -0 "$server" 2>/dev/null || { cat "$work/server.log" >&2; exit 1; }
  sleep 0.02
done
export DISPLAY=:$(cat "$work/number") TOLVAN_WINE_GRAPHICS=x11

# What the user has set up for it does not count.
HOME=$work XDG_CONFIG_HOME=$work setpriv --pdeathsig TERM openbox --sm-disable \
  >"$work/manager.log" 2>&1 &
manager=$!
until xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; do
  kill -0 "$manager" 2>/dev/null || { cat "$work/manager.log" >&2; exit 1; }
  sleep 0.02
done

code=0
"$@" || code=$?
exit "$code"
