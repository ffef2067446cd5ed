#!/bin/sh
# Builds the benchmark drivers, ours and the peers', and runs the benchmarks, installing what is
# missing (Debian). All arguments go to bench/run; see bench/run --help.
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
cd "$root"
. scripts/packages.sh

install_missing g++ make cmake python3 libcgal-dev libtet1.5-dev libqhull-dev
build=$root/build/bench
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DVARN3D_BUILD_BENCH=ON \
    -DVARN3D_BUILD_TESTS=OFF -DVARN3D_BUILD_TOOLS=OFF -DVARN3D_BUILD_EXAMPLES=OFF
cmake --build "$build" --parallel "$(nproc)"
exec "$root/bench/run" --build "$build" "$@"
