#!/usr/bin/env bash
# life.sh ADAPTER PROGRAMS TOOLS MACHINE_TOOL DEMO
# The game's whole life on one machine, for ./run --life: PROGRAMS is the folder of the build under
# test, TOOLS that of the host's tools, and everything is laid below the folder DEMO.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
adapter=$1 programs=$2 tools=$3 machine_tool=$4 demo=$5

bold=$(tput bold 2>/dev/null || true) plain=$(tput sgr0 2>/dev/null || true)
say() { printf '\n%s== %s%s\n' "$bold" "$1" "$plain"; }
fail() { echo "life.sh: $1" >&2; exit 1; }

machine=$demo/life-$adapter tree=$demo/life-tree work=$demo/life-work
game='C:\Games\Tolvan Online'
launcher='Tolvan Online.exe' client='.Tolvan Online.exe'
on_machine() { "$machine_tool" "$machine" "$@"; }

server='' follower=''
finish() {
  [ -z "$server" ] || kill "$server" 2>/dev/null || true
  [ -z "$follower" ] || kill "$follower" 2>/dev/null || true
  [ ! -d "$machine" ] || end_programs 2>/dev/null || true
  [ "$adapter" = host ] || WINEPREFIX=$machine/prefix wineserver -k 2>/dev/null || true
}
trap finish EXIT

# Ends the launcher and the game, as a player's shut-down would.
end_programs() {
  kill $(on_machine ps | awk '/Tolvan Online\.exe/ {print $1}') 2>/dev/null || true
}

# Follows the launcher's log and shows what happens, over relaunches too.
show_log() {
  tail -q -s 0.1 -n +1 --follow=name --retry --pid=$$ "$1" 2>/dev/null > >(grep --line-buffered -E \
    'run:|state:|compare:|selfupdate:|clientupdate:|handoff:|relaunch:|spawn:' |
    sed -uE 's|\r$||; s| \[tid [0-9]+\]||; s|^.*relaunch:|the new launcher:\n&|') &
  follower=$!
}

# wait_for SECONDS COMMAND...: until the command succeeds
wait_for() {
  local end=$((SECONDS + $1))
  shift
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || fail "this did not come true in time: $*"
    sleep 0.1
  done
}
logged() { grep -qF -- "$1" "$folder/launcher_boot.log" 2>/dev/null; }

# start PROGRAM: starts a launcher of the machine in the background
start() {
  rm -f "$progress" "$buttons" "$folder/launcher_boot.log"
  on_machine run "$1" >/dev/null 2>&1 &
  running=$!
}

# same WHAT FILE FILE: another tool compares
same() { cmp -s "$2" "$3" || fail "$1 is not the published one"; echo "$1: byte for byte the published one"; }

# check_game VERSION: compares what is installed with what was published
check_game() {
  local published=$work/served-$1
  (cd "$published" && find . -type f -print0 | sort -z | xargs -0 sha256sum) >"$work/sums"
  (cd "$folder/Data" && sed -n 's/^[0-9a-f]*  //p' "$work/sums" | tr '\n' '\0' |
     xargs -0 sha256sum) | cmp -s - "$work/sums" || fail 'the game is not the published one'
  echo "the game: $(wc -l <"$work/sums") files with the SHA-256 of the published ones"
  same 'the client' "$folder/$client" "$work/client-$1.exe"
  same 'the launcher' "$folder/$launcher" "$work/launcher-$1.exe"
  local left
  left=$(find "$folder" -name '*.part' -o -name '*.new' -o -name '*.old*')
  [ -z "$left" ] || fail "left behind: $left"
  echo 'nothing is left behind'
}

# make_version VERSION: what the operator has to publish
make_version() {
  for program in launcher client; do
    local source=$programs/$launcher
    [ "$program" = launcher ] || source=$programs/sample_game.exe
    # A program with a line behind it does the same and is another file.
    { cat "$source"; echo; echo "version $1"; } >"$work/$program-$1.exe"
    chmod +x "$work/$program-$1.exe"
  done
}
publish() {
  "$tools/tolvan-publish" "$tree" --game "$work/source-$1" --base "$work/base" \
    --client-x64 "$work/client-$1.exe" --launcher "$work/launcher-$1.exe" 2>/dev/null
  # What a launcher is to have: the files as they are served.
  rm -rf "$work/served-$1"
  cp -r "$tree/current/patcher/get" "$work/served-$1"
}

say 'The first version: some hundred files of a real game, a client, a launcher'
rm -rf "$machine" "$tree" "$work"
mkdir -p "$work/base"
files=$(tools/demo/prepare_game.sh "$demo")
(cd "$files" && find . -type f | sort | awk 'NR % 12 == 0' | tr '\n' '\0' |
   xargs -0 cp --parents -t "$(mkdir -p "$work/source-1" && echo "$work/source-1")")
echo 'Have fun.' >"$work/base/readme.txt"
make_version 1
publish 1

[ -e "$demo/certificates/ca.pem" ] || tools/server/make_certificates.sh "$demo/certificates"
rm -f "$demo/ports.json" "$demo/server.log"
"$tools/tolvan-server" "$tree/current" --certificates "$demo/certificates" --https good \
  --log "$demo/server.log" --ports-file "$demo/ports.json" >/dev/null &
server=$!
while [ ! -e "$demo/ports.json" ]; do kill -0 "$server"; sleep 0.05; done
port=$(sed -n 's/.*"https[^"]*":\([0-9]*\).*/\1/p' "$demo/ports.json")
echo "served at https://localhost:$port/"

say 'An empty machine, and the launcher as it was downloaded'
if [ "$adapter" = windows ]; then
  on_machine init --trust "$demo/certificates/ca.pem"
  on_machine stay-awake
else
  on_machine init
fi
downloads=$(on_machine path 'C:\Downloads')
folder=$(on_machine path "$game")
mkdir -p "$downloads"
cp "$work/launcher-1.exe" "$downloads/$launcher"
url=https://localhost:$port/
export TOLVAN_PATCH_URL=$url TOLVAN_ASSETS_URL=$url TOLVAN_PROBE_URL=$url
export TOLVAN_CA_FILE=$demo/certificates/ca.pem TOLVAN_WINDOW=none
export TOLVAN_PROGRESS_FILE='C:\progress.tsv' TOLVAN_BUTTON_FILE='C:\buttons.txt'
progress=$(on_machine path "$TOLVAN_PROGRESS_FILE") buttons=$(on_machine path "$TOLVAN_BUTTON_FILE")

say 'Install'
start "C:\\Downloads\\$launcher"
printf 'install\t%s\t1\tfull\tdesktop\tstartmenu\n' "$game" >"$buttons"
wait_for 60 grep -qs Install "$progress"
python3 tools/demo/follow_progress.py "$progress" "$running"
end_programs
wait "$running" 2>/dev/null || true
check_game 1
on_machine reg query \
  'HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\TolvanOnline' /v InstallLocation |
  grep -qF "$game" || fail 'the game is not registered'
echo "registered as installed in $game"
drive=$(on_machine path 'C:\' | sed 's|/$||')
links=$(find "$drive" -iname 'Tolvan Online.lnk')
[ "$(wc -l <<<"$links")" = 2 ] || fail 'there are not two links'
sed "s|^$drive/|link: |" <<<"$links"

say 'Play'
start "$game\\$launcher"
show_log "$folder/launcher_boot.log"
wait_for 120 logged '-> Ready'
printf 'play\n' >"$buttons"
wait_for 60 logged 'login screen is up'
sed 's/^/the game says: /' "$folder/sample_game.log"
end_programs
wait "$running" 2>/dev/null || true
kill "$follower" 2>/dev/null || true

say 'The second version: files changed and added, a new client, a new launcher'
cp -r "$work/source-1" "$work/source-2"
find "$work/source-2" -type f | sort | awk 'NR % 9 == 0' | while IFS= read -r file; do
  echo 'changed in the second version' >>"$file"
done
echo 'new in the second version' >"$work/source-2/added.txt"
make_version 2
publish 2

say 'The next start'
start "$game\\$launcher"
sleep 0.3
show_log "$folder/launcher_boot.log"
wait_for 300 cmp -s "$work/launcher-2.exe" "$folder/$launcher"
wait_for 120 logged 'selfupdate: launcher is current'
wait_for 120 cmp -s "$work/client-2.exe" "$folder/$client"
sleep 0.5
end_programs
wait "$running" 2>/dev/null || true
kill "$follower" 2>/dev/null || true
echo
check_game 2
say 'All checks passed: installed, played, and launcher, game and client brought up to date'
echo "the machine lies in ${machine#"$PWD"/}"
