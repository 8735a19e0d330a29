#!/usr/bin/env bash
# The main job: builds kcall and the sample module, and calls a few builtins with it. With
# arguments, runs kcall with them instead (scripts/demo.sh 'plus(1, 2)', scripts/demo.sh --list).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target kcall >/dev/null
kcall=build/release/bin/kcall
[ $# -gt 0 ] && exec "$kcall" "$@"

show() {
    echo "\$ kcall $*"
    "$kcall" "$@" 2>&1 || echo "(exit status $?)"
    echo
}
show 'plus(1, 2)'                                   # a scalar call
show 'plus([1; 2; 3], [10 20])'                     # a broadcast: 3-by-1 with 1-by-2
show 'round([0.5 1.5 2.5], "even")'                 # a flag
show 'sqrt([4 -1 9])'                               # a warning, and NaN where it warned
show 'inv(0)'                                       # an error
show --explain 'plus(int32(7), int32(5))'           # why the call went where it went
