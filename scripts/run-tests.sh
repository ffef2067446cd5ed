#!/bin/sh
# run-tests.sh                    builds everything and runs all tests: the preset release
# run-tests.sh all                everything that must hold, in steps, each of which is a command
#                                 that the output names; stops at the first that fails
# run-tests.sh all MINUTES        the same, but no step begins later than that; the output names those
#                                 left out
# run-tests.sh PRESET...          builds and runs all tests of these presets of CMakePresets.json
# run-tests.sh PRESET=TEST,...    only these test programs of the preset
# Installs what is missing (Debian).
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
cd "$root"
. scripts/packages.sh

start=$(date +%s)
step() {
    begin=$(date +%s)
    if [ -n "$minutes" ] && [ $((begin - start)) -gt $((60 * minutes)) ]; then
        echo "== LEFT OUT, more than $minutes minutes have passed: $*"
        return
    fi
    echo "== $*"
    "$@" || { echo "FAILED: $*"; exit 1; }
    echo "== $*: $(($(date +%s) - begin)) s"
}

run_preset() {
    preset=${1%%=*}
    cmake --preset "$preset" -DVARN3D_BUILD_BENCH=OFF
    if [ "$preset" = "$1" ]; then
        cmake --build --preset "$preset" --parallel "$(nproc)"
        ctest --preset "$preset" --parallel "$(nproc)"
    else
        programs=$(echo "${1#*=}" | tr , ' ')
        # The names are to be split into words.
        # shellcheck disable=SC2086
        cmake --build --preset "$preset" --parallel "$(nproc)" --target $programs
        ctest --preset "$preset" --parallel "$(nproc)" -R "^($(echo "$programs" | tr ' ' '|'))\."
    fi
}

install_missing g++ clang make cmake libcli11-dev libgtest-dev libgmock-dev libgmp-dev pkg-config \
    dpkg-dev fakeroot file
[ $# -gt 0 ] || set -- release
minutes=
if [ "$1" != all ]; then
    for preset in "$@"; do
        run_preset "$preset"
    done
    exit
fi

minutes=${2:-}
install_missing clang-format clang-tidy cppcheck git libclang-rt-dev valgrind
step scripts/check-format.sh
step scripts/run-tests.sh release
step scripts/run-valgrind.sh
step scripts/check-static.sh dt3Library/*.cpp dt3Library/*/*.cpp
step scripts/run-tests.sh thread=test_threads
step scripts/run-tests.sh sanitize=test_insertion,test_location,test_memory,test_mesh_oracle,test_pools,test_predicates,test_spheres,test_store
step scripts/run-fuzz.sh 60
echo "All steps done."
