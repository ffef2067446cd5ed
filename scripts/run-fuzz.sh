#!/bin/sh
# run-fuzz.sh [SECONDS [TARGET...]]: builds the fuzz targets (mesh, predicates, readers, spheres) with
# clang, address and undefined-behaviour sanitizers, and runs them side by side for so long (default
# 60), each starting from its corpus, fuzz/corpus/TARGET.txt. New inputs, the logs and a failing input
# are kept in build/fuzz, or in VARN3D_FUZZ_BUILD; scripts/corpus.sh adds inputs to a corpus. Installs
# what is missing (Debian).
set -eu

cd "$(dirname -- "$0")/.."
. scripts/packages.sh

seconds=${1:-60}
[ $# -eq 0 ] || shift
[ $# -gt 0 ] || set -- mesh predicates readers spheres
build=${VARN3D_FUZZ_BUILD:-build/fuzz}

install_missing clang make cmake libclang-rt-dev libgmp-dev perl
cmake -S . -B "$build" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_CXX_FLAGS_RELEASE=-O1 -DVARN3D_WERROR=ON -DVARN3D_BUILD_FUZZ=ON \
    -DVARN3D_BUILD_TESTS=OFF -DVARN3D_BUILD_TOOLS=OFF -DVARN3D_BUILD_EXAMPLES=OFF \
    -DVARN3D_BUILD_BENCH=OFF >/dev/null
# The names are to be split into words.
# shellcheck disable=SC2046
cmake --build "$build" --parallel "$(nproc)" --target $(printf 'fuzz_%s ' "$@")

# fuzz TARGET: prints its last lines, the figures, or all of a failure.
fuzz() {
    length=512
    [ "$1" != readers ] || length=4096
    mkdir -p "$build/corpus-$1"
    rm -rf "$build/given-$1"
    scripts/corpus.sh unpack "$1" "$build/given-$1"
    "$build/fuzz/fuzz_$1" -max_total_time="$seconds" -max_len="$length" -timeout=120 \
        -rss_limit_mb=4096 -print_final_stats=1 -artifact_prefix="$build/fuzz_$1-" \
        "$build/corpus-$1" "$build/given-$1" >"$build/fuzz_$1.log" 2>&1 && status=0 || status=$?
    echo "fuzz_$1:"
    [ "$status" -eq 0 ] || grep -v -E 'NEW|REDUCE|pulse|RELOAD' "$build/fuzz_$1.log"
    grep DONE "$build/fuzz_$1.log" || true
    grep '^stat::number_of_executed_units' "$build/fuzz_$1.log" || true
    return "$status"
}

echo "Fuzzing for $seconds s: $*"
running=
for target in "$@"; do
    fuzz "$target" &
    running="$running $!"
done
failures=0
for process in $running; do
    wait "$process" || failures=$((failures + 1))
done
[ $failures -eq 0 ] || echo "$failures of the fuzz targets failed; their inputs are $build/fuzz_*-*"
exit $failures
