#!/usr/bin/env bash
# run_fuzz.sh BUILD_FOLDER SECONDS
# Runs every fuzz target for that long over its corpus. New inputs go to the build folder, a
# finding stops its target and fails the run.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
build=$1 seconds=$2 status=0
for target in "$build"/bin/fuzz_*; do
  [ -x "$target" ] || { echo "no fuzz target stands in $build" >&2; exit 1; }
  name=$(basename "$target")
  found=$build/found/$name
  mkdir -p "$found"
  echo "== $name, $seconds s"
  "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$found/finding-" "$found" "fuzz/corpus/${name#fuzz_}" || status=1
done
exit $status
