#!/usr/bin/env bash
# Builds and runs the whole test suite: an optimised build, then the same tests under
# AddressSanitizer and UndefinedBehaviorSanitizer. Sets up the machine first if it has to.
# Usage: scripts/test.sh [preset ...]     (default: release asan)
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(release asan)
jobs=$(nproc)
for preset in "${presets[@]}"; do
  echo "=== ${preset}: configure and build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  echo "=== ${preset}: test"
  ctest --preset "$preset" -j "$jobs"
done
