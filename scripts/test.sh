#!/usr/bin/env bash
# Builds and runs the whole test suite: an optimised build, then the same tests under
# AddressSanitizer and UndefinedBehaviorSanitizer, then the tests that start threads under
# ThreadSanitizer. Sets up the machine first if it has to, and says how long each stage took.
# Usage: scripts/test.sh [preset ...]     (default: release asan tsan)
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(release asan tsan)
jobs=$(nproc)
for preset in "${presets[@]}"; do
  start=$SECONDS
  echo "=== ${preset}: configure and build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  built=$SECONDS
  echo "=== ${preset}: test"
  ctest --preset "$preset" -j "$jobs"
  echo "=== ${preset}: built in $((built - start)) s, tested in $((SECONDS - built)) s"
done
