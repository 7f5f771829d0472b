#!/usr/bin/env bash
# run_tidy.sh BUILD_FOLDER
# clang-tidy over every source of src/ and tools/ that the build compiles. Only files with findings
# print. A file that passed is not looked at again until it, a header of the project that it
# includes, its compile command or the configuration changes; that is remembered for all trees of
# the user, in the cache folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
build=$1
passed=${XDG_CACHE_HOME:-$HOME/.cache}/tolvan/tidy/$(clang-tidy --version | sha256sum | head -c 16)
mkdir -p "$passed"
find "$passed" -type f -mtime +30 -delete

check() {
  local build=$1 passed=$2 source=$3 digest=$4 output
  [ -e "$passed/$digest" ] && return 0
  if output=$(clang-tidy --quiet -p "$build" "$source" 2>&1); then
    touch "$passed/$digest"
  else
    grep -vE '^[0-9]+ (warning|error).*(generated|treated as)' <<<"== $source"$'\n'"$output"
    return 1
  fi
}
export -f check

# GoogleTest's macros trip most checks, so tests are held to the compiler's warnings only.
python3 tools/lint/tidy_sources.py "$build" |
  xargs -P "$(nproc)" -L 1 bash -c 'check "$@"' _ "$build" "$passed"
