#!/bin/sh
# Compares the meshes of the fixed inputs with their recorded digests in every way to build the
# library: two compilers, five optimisation levels, static and shared; and in hosts that are built
# with fast or extended arithmetic (tests/digests). Installs what is missing (Debian).
set -eu

cd "$(dirname -- "$0")/.."
. scripts/packages.sh

install_missing g++ clang make cmake

# check COMPILER FLAGS...: the library and its hosts, built with these flags.
check() {
    build=build/digests/$(echo "$*" | tr -d ' ')
    compiler=$1
    shift
    echo "== $compiler $*"
    cmake -S . -B "$build" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_FLAGS_RELEASE="$*" -DBUILD_SHARED_LIBS=ON -DVARN3D_BUILD_DIGESTS=ON \
        -DVARN3D_BUILD_TOOLS=OFF -DVARN3D_BUILD_TESTS=OFF -DVARN3D_BUILD_EXAMPLES=OFF \
        -DVARN3D_BUILD_BENCH=OFF >/dev/null
    cmake --build "$build" --parallel "$(nproc)" >"$build/build.log" || { cat "$build/build.log"; exit 1; }
    (cd "$build" && ctest -R '^digests\.' --output-on-failure --no-tests=error --parallel "$(nproc)")
}

for compiler in g++ clang++; do
    for level in -O0 -O1 -O2 -O3 '-O3 -march=native'; do
        # The level is to be split into words.
        # shellcheck disable=SC2086
        check $compiler $level
    done
done
# The insertion's steps as processors without vectors of doubles run them.
check g++ -O2 -DVARN3D_NO_AVX2
echo "All builds give the recorded meshes."
