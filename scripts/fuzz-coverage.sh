#!/bin/sh
# fuzz-coverage.sh [DIRECTORY...]: the share of the library's lines and branches that the fuzz
# targets reach with the corpora of fuzz/corpus, and with those in DIRECTORY/corpus-TARGET as run-fuzz.sh leaves
# them. Installs what is missing (Debian).
set -eu

cd "$(dirname -- "$0")/.."
. scripts/packages.sh

install_missing clang llvm make cmake libclang-rt-dev libgmp-dev perl
build=build/fuzz-coverage
cmake -S . -B "$build" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_CXX_FLAGS_RELEASE=-O1 -DCMAKE_CXX_FLAGS="-fprofile-instr-generate -fcoverage-mapping" \
    -DVARN3D_BUILD_FUZZ=ON -DVARN3D_BUILD_TESTS=OFF -DVARN3D_BUILD_TOOLS=OFF \
    -DVARN3D_BUILD_EXAMPLES=OFF -DVARN3D_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" --parallel "$(nproc)" \
    --target fuzz_mesh fuzz_predicates fuzz_readers fuzz_spheres

for target in mesh predicates readers spheres; do
    corpora=$build/given-$target
    rm -rf "$corpora"
    scripts/corpus.sh unpack $target "$corpora"
    for directory in "$@"; do
        corpora="$corpora $directory/corpus-$target"
    done
    # -runs=0 runs each input of the corpora once.
    # shellcheck disable=SC2086
    LLVM_PROFILE_FILE=$build/$target.profraw "$build/fuzz/fuzz_$target" -runs=0 -verbosity=0 \
        $corpora
    llvm-profdata merge -o "$build/$target.profdata" "$build/$target.profraw"
    files=dt3Library
    [ $target != readers ] || files=$(ls tools/*Reader.cpp tools/PointFile.cpp tools/LayoutFinder.cpp \
        tools/TextLayout.cpp tools/columns.cpp tools/parsing.cpp)
    [ $target != predicates ] || files='dt3Library/GeomTest3.cpp dt3Library/predicates/predicateStages.h'
    [ $target != spheres ] || files=dt3Library/kernel
    # shellcheck disable=SC2086
    echo "== fuzz_$target: $(find $corpora -type f | wc -l) inputs"
    # shellcheck disable=SC2086
    llvm-cov report "$build/fuzz/fuzz_$target" -instr-profile="$build/$target.profdata" $files |
        awk 'NR == 1 { print "file lines missed share branches missed share" }
            /\.(cpp|h) |^TOTAL/ { print $1, $8, $9, $10, $11, $12, $13 }' | column -t
done
