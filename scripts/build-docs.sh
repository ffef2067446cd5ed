#!/bin/sh
# Makes the reference manual of the public headers with doxygen (the target docs), installing it if
# missing (Debian). Anything undocumented is an error.
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
build=$root/build/docs
. "$root/scripts/packages.sh"

install_missing g++ make cmake doxygen
cmake -S "$root" -B "$build" -DVARN3D_BUILD_TOOLS=OFF -DVARN3D_BUILD_TESTS=OFF \
    -DVARN3D_BUILD_EXAMPLES=OFF -DVARN3D_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" --target docs
echo "Made $build/reference/html/index.html"
