#!/usr/bin/env bash
# Installs the Debian packages the project builds against, and nothing when they are all there.
# Safe to run on every build: the check is one dpkg query.
# Usage: scripts/setup.sh [fuzz]     (fuzz: clang and libFuzzer too, for the fuzz preset)
set -euo pipefail

packages=(
  cmake g++ ninja-build pkg-config clang-format ccache
  libboost1.81-dev libboost-log1.81-dev libboost-json1.81-dev libboost-locale1.81-dev
  libtbb-dev libsleef-dev
  libgtest-dev libgmock-dev
  libbenchmark-dev
  libcli11-dev libedit-dev
  python3-numpy
)
# The fuzz preset builds with clang, whose libFuzzer runtime comes in its own package.
if [ "${1:-}" = fuzz ]; then
  packages+=(clang libclang-rt-14-dev)
fi

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$p" 2>/dev/null || true)
  [ "$status" = "installed" ] || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "setup: installing ${missing[*]}" >&2
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
