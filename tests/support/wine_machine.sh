#!/usr/bin/env bash
# wine_machine.sh FOLDER COMMAND [ARGUMENT...]
#
# A Windows machine of its own in FOLDER, played by Wine: what tolvan-machine is for the host build,
# with the same words, so that one script serves both.
#
#   init [--trust CA.pem]...      makes the machine; its programs trust these certificate authorities
#   path 'C:\dir\file'            prints where that lies here (any case; it need not exist)
#   map LETTER /dir               makes a folder of this system a drive of the machine
#   reg query|add|delete ...      the arguments of Windows' own reg
#   run 'C:\dir\program.exe' ...  runs a program and returns its exit code (8 bits of it); 125 when
#                                 the program is a 32-bit one, which Wine here cannot run
#   ps                            lists the running programs: process id (this system's) and command
#   stay-awake                    keeps the system's own programs running from now on, so that
#                                 every later call is some tenths of a second faster
#   end                           kills what still runs, and removes the machine
#
# C: is FOLDER/drive_c and D: is FOLDER/drive_d, which lies on another file system where there is
# one, so that a move from drive to drive really is one. No other folder of this system can be seen
# from inside. Variables of the environment reach the programs, for instance TOLVAN_PATCH_URL.
#
# A file's read-only attribute, which is its mode here, holds for the superuser too.
#
# Windows can be drawn on but are not shown, unless TOLVAN_WINE_GRAPHICS=x11 is set for init: then
# they are, and a display is needed.
#
# The first use on a computer makes a template (about ten seconds); a machine is a copy of it whose
# system files are shared, made in some 50 ms. The template lies in TOLVAN_WINE_CACHE, or in the
# user's cache folder, and is made anew when Wine or the way of making it changes.
set -euo pipefail

wine=/usr/lib/wine/wine64
cache=${TOLVAN_WINE_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/tolvan/wine}
self=${BASH_SOURCE[0]}

fail() { echo "wine_machine.sh: $*" >&2; exit 125; }
usage() { sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$self" >&2; exit 2; }

case "${1:-}" in ''|-h|--help) usage ;; esac
[ $# -ge 2 ] || usage
[ -x "$wine" ] || fail "wine64 is missing"
mkdir -p "$1"
machine=$(cd "$1" && pwd)
command=$2
shift 2

# Wine with a prefix and a home of its own, and without the parts that ask for a display, offer to
# download something, or write into the desktop's menus.
use_prefix() {
  export WINEPREFIX=$1/prefix HOME=$1/home WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
  export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d;winedbg.exe=d'
  export WINELOADER=$wine
}

# The superuser may write to read-only files; programs of the machine may not.
launcher=("$wine")
no_override=(setpriv --bounding-set=-dac_override,-dac_read_search)
if [ "$(id -u)" = 0 ] && "${no_override[@]}" true 2>/dev/null; then
  launcher=("${no_override[@]}" "$wine")
fi

# Everything that costs time at the start of the first program and that no test needs.
unneeded_services=(Eventlog NDIS PlugPlay winebus winehid wineusb)

make_template() {
  local making=$1 service folder
  mkdir -p "$making/prefix" "$making/home"
  (
    use_prefix "$making"
    unset DISPLAY
    timeout 300 "$wine" wineboot --init
    "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /t REG_SZ /d null /f
    "$wine" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f
    for service in "${unneeded_services[@]}"; do
      "$wine" reg add "HKLM\\System\\CurrentControlSet\\Services\\$service" \
              /v Start /t REG_DWORD /d 4 /f
    done
    wineserver -k
    wineserver -w
  ) >"$making/log" 2>&1 || fail "no prefix could be made, see $making/log"
  echo disable >"$making/prefix/.update-timestamp"
  find "$making/prefix/dosdevices" -type l ! -name c: -delete
  # The user's folders are links into the home folder: give the machine folders of its own.
  find "$making/prefix/drive_c/users" -type l -print0 |
    while IFS= read -r -d '' folder; do rm "$folder"; mkdir "$folder"; done
}

# Prints the template's folder, and makes it first where it is missing.
template() {
  local key made making
  key=$( ("$wine" --version; declare -f use_prefix make_template; echo "${unneeded_services[@]}") |
           sha256sum | cut -c1-16)
  made=$cache/template-$key
  mkdir -p "$cache"
  if [ ! -d "$made" ]; then
    exec 9>"$cache/lock"
    flock 9
    if [ ! -d "$made" ]; then
      find "$cache" -mindepth 1 -maxdepth 1 -type d -mtime +7 -exec rm -rf {} +
      making=$(mktemp -d "$cache/making.XXXXXX")
      make_template "$making" 9>&-
      mv "$making" "$made"
    fi
    exec 9>&-
  fi
  touch "$made"
  echo "$made"
}

# Prints the registry section that puts a certificate into the user's store of trusted roots: a
# serialised certificate is a row of properties (number, 1, length, bytes), and number 32 is the
# certificate itself.
trusted_root() {
  local der size name
  der=$(openssl x509 -in "$1" -outform DER | od -An -v -tx1 | tr -d ' \n')
  [ -n "$der" ] || fail "$1 holds no certificate"
  name=$(openssl x509 -in "$1" -noout -fingerprint -sha1 | sed 's/.*=//; s/://g')
  size=$(printf '%08x' $((${#der} / 2)) | sed 's/\(..\)\(..\)\(..\)\(..\)/\4\3\2\1/')
  printf '\n[Software\\\\Microsoft\\\\SystemCertificates\\\\Root\\\\Certificates\\\\%s]\n' "$name"
  printf '"Blob"=hex:%s\n' "$(echo "2000000001000000$size$der" | sed 's/../&,/g; s/,$//')"
}

init() {
  local from second
  [ ! -e "$machine/prefix" ] || fail "$machine is a machine already"
  from=$(template)
  mkdir -p "$machine/prefix" "$machine/home"
  cp -a "$from/prefix/dosdevices" "$from/prefix"/*.reg "$from/prefix/.update-timestamp" \
     "$machine/prefix"
  mkdir "$machine/prefix/drive_c"
  # System files are shared with the template; across file systems a link leads to each of them.
  cp -al "$from/prefix/drive_c/windows" "$machine/prefix/drive_c" 2>/dev/null ||
    cp -as "$from/prefix/drive_c/windows" "$machine/prefix/drive_c"
  find "$from/prefix/drive_c" -mindepth 1 -maxdepth 1 ! -name windows \
       -exec cp -a {} "$machine/prefix/drive_c" \;
  ln -s prefix/drive_c "$machine/drive_c"
  if [ "${TOLVAN_WINE_GRAPHICS:-null}" = x11 ]; then
    sed -i 's/^"Graphics"="null"/"Graphics"="x11"/' "$machine/prefix/user.reg"
  fi

  if [ -w /dev/shm ]; then
    # Named after the machine, so that one whose folder was just removed leaves nothing for long.
    second=/dev/shm/tolvan-drive.$(sha256sum <<<"$machine" | cut -c1-16)
    rm -rf "$second"
    mkdir -m 700 "$second"
    ln -s "$second" "$machine/drive_d"
  else
    mkdir "$machine/drive_d"
  fi
  map d "$machine/drive_d"

  while [ $# -ge 2 ] && [ "$1" = --trust ]; do
    trusted_root "$2" >>"$machine/prefix/user.reg"
    shift 2
  done
  [ $# -eq 0 ] || usage
}

map() {
  local link
  link=$machine/prefix/dosdevices/${1,,}:
  rm -f "$link"
  ln -s "$(cd "$2" && pwd -P)" "$link"
}

# The last part that exists decides; from there on the name is taken as it is.
path() {
  local here rest name found
  here=$machine/prefix/dosdevices/${1:0:1}:
  here=${here%?:}$(tr A-Z a-z <<<"${1:0:1}"):
  [ -e "$here" ] || fail "there is no drive ${1:0:2}"
  here=$(readlink -f "$here")
  rest=${1:2}
  rest=${rest//\\//}
  while IFS= read -r -d / name || [ -n "$name" ]; do
    [ -n "$name" ] || continue
    found=
    [ -d "$here" ] && found=$(find "$here" -mindepth 1 -maxdepth 1 -printf '%f\n' |
                                grep -ixF -m1 -- "$name" || true)
    here=$here/${found:-$name}
  done <<<"$rest"
  echo "$here"
}

# Wine here runs 64-bit programs only: it starts a 32-bit one, does nothing, and reports success.
is_32_bit() {
  local header
  header=$(od -An -tu4 -j60 -N4 "$1" 2>/dev/null | tr -d ' ')
  [ -n "$header" ] && [ "$(od -An -tx2 -j$((header + 4)) -N2 "$1" | tr -d ' ')" = 014c ]
}

windows_reg() { "${launcher[@]}" 'C:\windows\system32\reg.exe' "$@"; }

run() {
  local program
  program=$(path "$1")
  [ -f "$program" ] || fail "there is no $1"
  if is_32_bit "$program"; then fail "$1 is a 32-bit program, which Wine here cannot run"; fi
  use_prefix "$machine"
  cd "$(dirname "$program")"
  exec "${launcher[@]}" "$@"
}

registry() {
  use_prefix "$machine"
  cd "$machine/drive_c"
  windows_reg "$@" | tr -d '\r'
}

# They end with the last program of the machine, so one of them waits for a key from nobody. Wine
# may hang when a second program comes while the first one still boots it: wait until that is up.
stay_awake() {
  use_prefix "$machine"
  cd "$machine/drive_c"
  mkfifo "$machine/nobody"
  setsid "${launcher[@]}" 'C:\windows\system32\cmd.exe' /c pause \
         <>"$machine/nobody" >"$machine/awake" 2>&1 &
  until [ -s "$machine/awake" ]; do
    kill -0 $! || fail "the machine does not start"
    sleep 0.02
  done
}

list_programs() {
  local folder
  for folder in /proc/[0-9]*; do
    if tr '\0' '\n' <"$folder/environ" | grep -qxF "WINEPREFIX=$machine/prefix"; then
      printf '%s %s\n' "${folder#/proc/}" "$(tr '\0' ' ' <"$folder/cmdline")"
    fi
  done 2>/dev/null | grep -F '.exe' || true
}

end() {
  (use_prefix "$machine"; wineserver -k || true)
  if [ -L "$machine/drive_d" ]; then rm -rf "$(readlink "$machine/drive_d")"; fi
  rm -rf "$machine"
}

case "$command" in
  init) init "$@" ;;
  path) path "$1" ;;
  map) map "$1" "$2" ;;
  reg) registry "$@" ;;
  run) run "$@" ;;
  ps) list_programs ;;
  stay-awake) stay_awake ;;
  end) end ;;
  *) usage ;;
esac
