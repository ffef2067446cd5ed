#!/bin/sh
# Compares the meshes of the fixed inputs with their recorded digests in every way to build the
# library: two compilers, five optimisation levels, static and shared; and in hosts that are built
# with fast or extended arithmetic. Installs what is missing (Debian).
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
cd "$root"
. scripts/packages.sh

install_missing g++ clang
build=build/digests
sources=$(sed -n '/^set(VARN3D_SOURCES/,/)$/ s/^ *\(dt3Library[^)]*\))*$/\1/p' CMakeLists.txt)
strict="-std=c++17 -ffp-contract=off -I. -DVARN3D_SHARED"
library="$strict -fPIC -fvisibility=hidden -fvisibility-inlines-hidden -DVARN3D_BUILDING"
numGreen=0

# build_library DIRECTORY COMPILER OPTION...: libvarn3d.a and libvarn3d.so of the same objects.
build_library() {
    directory=$1
    shift
    rm -rf "$directory"
    mkdir -p "$directory"
    # shellcheck disable=SC2086
    printf '%s\n' $sources | xargs -P "$(nproc)" -I{} sh -c '
        source=$1 directory=$2
        shift 2
        exec "$@" -c "$source" -o "$directory/$(basename "$source" .cpp).o"' sh {} "$directory" \
        "$@" $library
    ar rcs "$directory/libvarn3d.a" "$directory"/*.o
    "$1" -shared -Wl,--version-script=cmake/exports.map "$directory"/*.o \
        -o "$directory/libvarn3d.so"
}

# run_host LIBRARY_DIRECTORY COMPILER OPTION...: a host with these options, linked both ways.
run_host() {
    from=$1
    shift
    host=$build/host
    rm -rf "$host"
    mkdir -p "$host"
    # shellcheck disable=SC2086
    "$1" $strict -O2 -c tests/support/DigestInputs.cpp -o "$host/inputs.o"
    for linkage in a so; do
        # shellcheck disable=SC2086
        "$@" -std=c++17 -I. -DVARN3D_SHARED tests/digests/main.cpp tests/support/MeshDigest.cpp \
            "$host/inputs.o" "$from/libvarn3d.$linkage" -Wl,-rpath,"$root/$from" -o "$host/program"
        "$host/program" >"$host/output" || { echo "$*, libvarn3d.$linkage:"; cat "$host/output"; exit 1; }
        echo "$*, $from/libvarn3d.$linkage: $(grep -c 'as recorded' "$host/output") digests as recorded"
        numGreen=$((numGreen + 1))
    done
}

for compiler in g++ clang++; do
    for level in -O0 -O1 -O2 -O3 '-O3 -march=native'; do
        directory=$build/$compiler$(echo "$level" | tr -d ' ')
        # The level is to be split into words, here and below.
        # shellcheck disable=SC2086
        build_library "$directory" $compiler $level
        # shellcheck disable=SC2086
        run_host "$directory" $compiler $level
    done
    run_host "$build/g++-O2" $compiler -O3 -march=native -ffast-math
done
# The insertion's steps as processors without vectors of doubles run them.
build_library "$build/portable" g++ -O2 -DVARN3D_NO_AVX2
run_host "$build/portable" g++ -O2
run_host "$build/g++-O2" g++ -O2 -mfpmath=387
run_host "$build/clang++-O3" g++ -O3 -ffast-math -mfpmath=387
echo "All $numGreen builds give the recorded meshes."
