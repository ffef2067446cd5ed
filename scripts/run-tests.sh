#!/bin/sh
# Builds everything and runs all tests, installing what is missing (Debian). The arguments name
# test presets of CMakePresets.json, for instance: scripts/run-tests.sh release clang sanitize
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
cd "$root"
. scripts/packages.sh

install_missing g++ clang make cmake libcli11-dev libgtest-dev libgmock-dev libgmp-dev pkg-config \
    dpkg-dev fakeroot file
[ $# -gt 0 ] || set -- release
for preset in "$@"; do
    echo "== $preset"
    cmake --preset "$preset" -DVARN3D_BUILD_BENCH=OFF
    cmake --build --preset "$preset" --parallel "$(nproc)"
    ctest --preset "$preset" --parallel "$(nproc)"
done
