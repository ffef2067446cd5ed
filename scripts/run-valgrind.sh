#!/bin/sh
# run-valgrind.sh [N]: runs the program varn3d under valgrind on every Nth point of the shipped scan
# (default: all, which takes some minutes), with the check of the mesh and every writer; an invalid
# access, a use of an uninitialised value or a leak is an error. Installs what is missing (Debian).
set -eu

cd "$(dirname -- "$0")/.."
. scripts/packages.sh

install_missing g++ make cmake libcli11-dev valgrind
# The build of the release preset, if it is there, has the program already.
cmake --preset release -DVARN3D_BUILD_BENCH=OFF >/dev/null
cmake --build --preset release --target varn3d --parallel "$(nproc)"
output=build/valgrind
mkdir -p "$output"
awk -v n="${1:-1}" '
    inBody { if (++i % n == 0) print; next }
    $1 == "element" { $3 = int($3 / n) }
    { print }
    $1 == "end_header" { inBody = 1 }' examples/data/duck.ply >"$output/points.ply"
valgrind --quiet --error-exitcode=9 --leak-check=full --show-leak-kinds=all \
    --errors-for-leak-kinds=all build/release/tools/varn3d "$output/points.ply" --check --stats \
    --vtk "$output/scan.vtu" --medit "$output/scan.mesh" --tetgen "$output/scan" \
    --hull "$output/hull.ply" --geomview "$output/scan.list"
