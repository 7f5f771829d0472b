#!/usr/bin/env bash
# Says which C++ sources clang-format would change, and fails when there is one.
# With --fix they are changed.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
mode=(--dry-run --Werror)
[ "${1:-}" = --fix ] && mode=(-i)
git ls-files -z '*.cpp' '*.h' | xargs -0 -r clang-format "${mode[@]}"
