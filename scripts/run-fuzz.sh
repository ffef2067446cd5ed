#!/bin/sh
# run-fuzz.sh [SECONDS]: builds the fuzz targets with clang and runs each for so long (default 60),
# starting from the corpora in fuzz/corpus. New inputs go to the build directory; a failing one stops
# the script and is left there.
set -eu
cd "$(dirname "$0")/.."
seconds=${1:-60}
build=${VARN3D_FUZZ_BUILD:-build-fuzz}

. scripts/packages.sh
install_missing clang make cmake libclang-rt-dev libgmp-dev

CXX=clang++ cmake -S . -B "$build" -DVARN3D_BUILD_FUZZ=ON -DVARN3D_BUILD_TESTS=OFF \
    -DVARN3D_BUILD_TOOLS=OFF -DVARN3D_BUILD_EXAMPLES=OFF -DVARN3D_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j "$(nproc)" --target fuzz_mesh fuzz_predicates fuzz_readers

for target in mesh predicates readers; do
    mkdir -p "$build/corpus-$target"
    length=512
    [ "$target" = readers ] && length=4096
    echo "fuzz_$target: $seconds s"
    "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len="$length" -timeout=20 \
        -rss_limit_mb=4096 -print_final_stats=1 -verbosity=0 \
        -artifact_prefix="$build/fuzz_$target-" "$build/corpus-$target" "fuzz/corpus/$target"
done
