#!/bin/sh
# run-tests.sh                    builds everything and runs all tests: the preset release
# run-tests.sh quick              the quick set: that, format, layers, and the size of functions and of
#                                 the tests
# run-tests.sh all                the full set, everything that must hold
# run-tests.sh all MINUTES        the same, but no step begins later than that
# run-tests.sh PRESET...          builds and runs all tests of these presets of CMakePresets.json
# run-tests.sh PRESET=TEST,...    only these test programs of the preset
# run-tests.sh together           runs each test program of the preset release as a whole, in the order
#                                 of the file and shuffled, where the others give a process to each case
#
# The steps of a set are commands that the output names. The first that fails ends it; the last line
# says how many were done, and which were left out. Installs what is missing (Debian).
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
cd "$root"
. scripts/packages.sh

quick_set() {
    cat <<'END'
scripts/check-format.sh
scripts/check-layers.py
scripts/check-lengths.py
scripts/test-share.py
scripts/run-tests.sh release
END
}

full_set() {
    quick_set
    cat <<'END'
scripts/run-tests.sh together
scripts/run-python-tests.sh
scripts/run-tests.sh thread=test_threads
scripts/run-valgrind.sh 8
scripts/check-static.sh dt3Library/*.cpp dt3Library/*/*.cpp
scripts/run-tests.sh sanitize=test_insertion,test_location,test_memory,test_mesh_oracle,test_pools,test_predicates,test_spheres,test_store
scripts/run-fuzz.sh 60
END
}

# run_set MINUTES <STEPS: the steps in turn, as long as no more minutes than that have passed.
run_set() {
    start=$(date +%s)
    finished=0
    left=0
    left_out=
    while read -r step; do
        begin=$(date +%s)
        if [ -n "$1" ] && [ $((begin - start)) -ge $((60 * $1)) ]; then
            left=$((left + 1))
            left_out="$left_out; $step"
            continue
        fi
        echo "== $step"
        # The steps name files by patterns.
        sh -c "$step" </dev/null || { echo "FAILED after $finished steps: $step"; return 1; }
        echo "== $step: $(($(date +%s) - begin)) s"
        finished=$((finished + 1))
    done
    if [ $left -eq 0 ]; then
        echo "All $finished steps done."
    else
        echo "$finished of $((finished + left)) steps done, $left left out after $1 minutes: ${left_out#; }"
    fi
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
case $1 in
    quick)
        install_missing clang-format git python3
        quick_set | run_set ''
        ;;
    all)
        install_missing clang-format clang-tidy cppcheck git libclang-rt-dev perl python3 valgrind
        full_set | run_set "${2:-}"
        ;;
    together)
        cmake --preset release -DVARN3D_BUILD_BENCH=OFF
        cmake --build --preset release --parallel "$(nproc)"
        ctest --preset release --parallel "$(nproc)" -C Together -R '^together\.'
        ;;
    *)
        for preset in "$@"; do
            run_preset "$preset"
        done
        ;;
esac
