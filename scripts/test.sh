#!/usr/bin/env bash
# Builds and runs the whole test suite: an optimised build, then the same tests under
# AddressSanitizer and UndefinedBehaviorSanitizer, then the tests that start threads under
# ThreadSanitizer. Sets up the machine first if it has to, and says how long each stage took.
# Usage: scripts/test.sh [preset ...]     (default: release asan tsan)
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

# Every C++ file in the one format of .clang-format; a file that differs fails the run before
# anything is built, with the command that fixes it.
if command -v clang-format >/dev/null; then
  unformatted=$(git ls-files '*.cpp' '*.hpp' '*.h' | xargs clang-format --dry-run 2>&1 |
    grep -oE '^[^:]+\.(cpp|hpp|h):' | sort -u | tr -d ':' || true)
  if [ -n "$unformatted" ]; then
    echo "=== format: these files differ from .clang-format (run: clang-format -i FILE):" >&2
    echo "$unformatted" >&2
    exit 1
  fi
  echo "=== format: every C++ file as .clang-format says"
else
  echo "=== format: clang-format is missing, so the format is not checked (scripts/setup.sh installs it)"
fi

# A compiler cache keyed by paths relative to the checkout, so that a second run, or a fresh
# clone on the same machine (as CI's is), compiles only what changed.
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache CMAKE_C_COMPILER_LAUNCHER=ccache
  export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
fi

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
