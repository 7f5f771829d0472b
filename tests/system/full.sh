#!/usr/bin/env bash
# The long whole-program runs: hundreds of kills, for the launcher on the host and under Wine and for
# the publisher, a list of millions of files, and thousands of generated game folders. The builds
# host and windows-x64 have to be there; without the latter what runs under Wine is left out.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
export TOLVAN_BIN=$PWD/build/host/bin TOLVAN_HOST_BIN=$PWD/build/host/bin TOLVAN_ADAPTER=host
TOLVAN_KILLS=${TOLVAN_KILLS:-300} tests/support/with_server.sh \
  python3 -B tests/system/kill_patch_test.py
TOLVAN_KILL_STEPS=all tests/support/with_server.sh python3 -B tests/system/kill_steps_test.py
windows=$PWD/build/windows-x64/bin
if [ -e "$windows/Tolvan Online.exe" ]; then
  TOLVAN_KILL_STEPS=all TOLVAN_BIN=$windows TOLVAN_ADAPTER=win32 \
    tests/support/with_server.sh python3 -B tests/system/kill_steps_test.py
else
  echo 'TOLVAN-SKIPPED: no Windows build, so no kills and no generated folders under Wine' >&2
fi
python3 -B tests/tools/publish_crash_test.py --kills 300
TOLVAN_LONG_LIST=yes tests/support/with_server.sh python3 -B tests/system/bad_server_test.py \
  BadServerTest.test_list_of_100_MB_with_two_and_a_half_million_files
TOLVAN_KILL_STEPS=all python3 -B tests/system/kill_leave_test.py
export TOLVAN_SEED=${TOLVAN_SEED:-$RANDOM}
echo "generated game folders, TOLVAN_SEED=$TOLVAN_SEED"
TOLVAN_TREES=${TOLVAN_TREES:-2000} \
  tests/support/with_machine.sh build/host/bin/install_trees_test --gtest_brief=1
if [ -e "$windows/install_trees_test.exe" ]; then
  TOLVAN_TREES=${TOLVAN_WINE_TREES:-600} tests/support/with_wine.sh --time-limit 3600 \
    "$windows/install_trees_test.exe" --gtest_brief=1
fi
