#!/bin/sh
# Builds the program varn3d and runs it on the shipped scan, installing what is missing (Debian).
# Arguments are handed on to the program: scripts/run-example.sh --stats
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
build="$root/build/example"
mkdir -p "$build"
. "$root/scripts/packages.sh"

install_missing g++ make cmake libcli11-dev
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DVARN3D_BUILD_TESTS=OFF \
    -DVARN3D_BUILD_EXAMPLES=OFF -DVARN3D_BUILD_BENCH=OFF >"$build.log" 2>&1 ||
    { cat "$build.log" >&2; exit 1; }
cmake --build "$build" --target varn3d --parallel "$(nproc)" >"$build.log" 2>&1 ||
    { cat "$build.log" >&2; exit 1; }

echo "varn3d examples/data/duck.ply --check $*"
"$build/tools/varn3d" "$root/examples/data/duck.ply" --check "$@"
