#!/usr/bin/env bash
# Builds the project (optimised) and runs its main job. Sets up the machine first if it has to.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target builtin_demo >/dev/null
exec build/release/bin/builtin_demo "$@"
