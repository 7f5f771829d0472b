#!/usr/bin/env bash
# run_all.sh BUILD_FOLDER
# Runs all benchmarks of a release build and prints their ratios. Fails when a program fails, and
# never on a time: those depend on the machine and on what else it does.
set -euo pipefail
if [ $# -ne 1 ] || [ ! -d "$1/bin" ]; then
    sed -n '2,4{s/^# \{0,1\}//;p}' "${BASH_SOURCE[0]}" >&2
    exit 2
fi
here=$(dirname "${BASH_SOURCE[0]}")
python3 -B "$here/gui_ratios.py" "$1/bin" --rounds "${TOLVAN_BENCH_ROUNDS:-3}"
python3 "$here/ratios.py" "$1/bin" --rounds "${TOLVAN_BENCH_ROUNDS:-3}"
