#!/usr/bin/env bash
# Installs the build tree into a fresh prefix, builds the consumer project against it with the
# build's own compiler and flags, runs it, and runs the installed kcall, which must find the
# installed bundles and the sample module on its own.
# Usage: run_consumer.sh <build dir> <consumer source> <c++ compiler> <c++ flags> <linker flags>
set -euo pipefail
build=$1 source=$2 compiler=$3 flags=$4 linkFlags=$5
work=$(mktemp -d "${build}/install-test.XXXXXX")
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/prefix" >/dev/null
cmake -S "$source" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" \
  -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$linkFlags" >/dev/null
cmake --build "$work/build" >/dev/null
"$work/build/consumer"
# Away from the build tree: nothing but the prefix may be found.
cd "$work" && env -u KELDOR_INSTALL_ROOT "$work/prefix/bin/kcall" --json 'plus(1, 2)' 'class(counter(1))'
# The author's module, from a folder given relative to the current one.
env -u KELDOR_INSTALL_ROOT "$work/prefix/bin/kcall" --modules build/modules --json 'scale([1 2], 3)'
