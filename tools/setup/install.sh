#!/usr/bin/env bash
# install.sh [LIST...]
# Installs the Debian packages that the lists beside this script name (default: packages.txt).
# What is there already costs nothing; a failed download is tried again. Exit code 0 when every
# package is installed, 1 when one could not be had.
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

case "${1:-}" in
  -h|--help) sed -n '2,5s/^# //p' "${BASH_SOURCE[0]}"; exit 0 ;;
esac
[ $# -gt 0 ] || set -- packages.txt

installed() { [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

missing=()
for list in "$@"; do
  while read -r package _; do
    case "$package" in ''|'#'*) continue ;; esac
    installed "$package" || missing+=("$package")
  done <"$here/$list"
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "install.sh: not root and no sudo; missing: ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi

echo "Installing ${#missing[@]} packages: ${missing[*]}"
for try in 1 2 3 4; do
  # A fresh machine's own first update may hold the package lock: wait for it.
  if "${as_root[@]}" apt-get update -qq -o DPkg::Lock::Timeout=120 &&
     "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
       apt-get install -y -qq -o DPkg::Lock::Timeout=120 --no-install-recommends \
       "${missing[@]}" >/dev/null; then
    exit 0
  fi
  echo "install.sh: try $try failed" >&2
  sleep $((try * 5))
done
echo "install.sh: could not install: ${missing[*]}" >&2
exit 1
