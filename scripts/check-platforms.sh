#!/bin/sh
# check-platforms.sh              compares the meshes of the fixed inputs with their recorded digests on
#                                 every platform below, and runs tests or the program on some
# check-platforms.sh PLATFORM...  only on these
# Other processors are emulated (qemu-user), and Windows is Wine. Ends with a table. Installs what is
# missing (Debian); libraries of other architectures are unpacked below build only.
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
cd "$root"
. scripts/packages.sh

[ $# -gt 0 ] || set -- x86-64 x86-64-portable x86-64-libc++ standard-only i686 aarch64 s390x windows
build=$root/build/platforms
table=$build/table
mkdir -p "$build"
install_missing make cmake dpkg

# unpack ARCHITECTURE PACKAGE...: below $build/debian-ARCHITECTURE.
unpack() {
    prefix=$build/debian-$1
    options="-o Dir::State::Lists=$prefix/lists -o Dir::Cache=$prefix -o Dir::State::status=/dev/null
        -o APT::Architecture=$1 -o APT::Architectures=$1 -o APT::Sandbox::User="
    shift
    [ ! -d "$prefix/usr" ] || return 0
    mkdir -p "$prefix/lists/partial" "$prefix/archives/partial"
    # The options are to be split into words.
    # shellcheck disable=SC2086
    (
        cd "$prefix"
        # One archive that can't be reached doesn't matter where the others have all that is wanted.
        apt-get -qq $options update || true
        apt-get -qq $options download "$@"
        for package in *.deb; do dpkg-deb -x "$package" .; done
    )
}

# quietly COMMAND...: shows its output only if it fails.
quietly() {
    "$@" >"$build/log" 2>&1 || { tail -n 50 "$build/log"; echo "FAILED on $platform: $*"; exit 1; }
}

configure() {
    quietly cmake -S . -B "$build/$platform" -DCMAKE_BUILD_TYPE=Release -DVARN3D_BUILD_BENCH=OFF \
        -DVARN3D_BUILD_DIGESTS=ON "$@"
}

compile() {
    quietly cmake --build "$build/$platform" --parallel "$(nproc)" "$@"
}

# digests COMPILER: builds the host that compares the meshes with their digests, and runs it.
digests() {
    compile --target plain_host
    quietly env WINEPREFIX="$build/wine" WINEDEBUG=-all ctest --test-dir "$build/$platform" \
        --tests-regex '^digests\.plain_host$' --verbose --no-tests=error
    result="$(grep -c 'as recorded' "$build/log") digests"
    version=$("$1" --version | sed -n '1s/([^)]*)//; 1s/ \+/ /gp')
}

# tests [TEST...]: builds and runs these test programs and the sessions of the program, or all tests.
# One case of test_store starts itself anew, which takes a processor of its kind.
tests() {
    compile ${1:+--target varn3d "$@"}
    chosen=$(echo test_program "$@" | tr ' ' '|')
    quietly ctest --test-dir "$build/$platform" --parallel "$(nproc)" --output-on-failure \
        --no-tests=error \
        ${1:+--tests-regex "^($chosen)\." --exclude-regex BoxesGrowByTheirFactors}
    number=$(sed -n 's/^100% tests passed, 0 tests failed out of //p' "$build/log")
    result="$result, $number tests"
}

# cross TRIPLET ARCHITECTURE
cross() {
    install_missing "g++-$1" libcli11-dev
    unpack "$2" libgmp-dev libgtest-dev libgmock-dev
    configure --toolchain "$root/cmake/toolchains/$1.cmake" \
        -DCMAKE_PREFIX_PATH="$build/debian-$2/usr"
    digests "$1-g++"
}

# emulated PROCESSOR ARCHITECTURE
emulated() {
    install_missing qemu-user
    emulator=qemu-$1
    cross "$1-linux-gnu" "$2"
    # Not all: the oracles of whole meshes and test_memory take too long on an emulator.
    tests test_digests test_predicates test_spheres test_kernel test_store test_location \
        test_utilities
}

# native COMPILER [FLAGS]
native() {
    configure -DCMAKE_CXX_COMPILER="$1" -DVARN3D_BUILD_TESTS=OFF \
        -DVARN3D_BUILD_EXAMPLES=OFF -DVARN3D_BUILD_TOOLS=OFF "-DCMAKE_CXX_FLAGS=${2:-}"
}

# The program on Windows reads and writes the same bytes as here, under names in any script.
windows_program() {
    compile --target varn3d
    install_missing g++ libcli11-dev
    quietly cmake -S . -B "$build/here" -DCMAKE_BUILD_TYPE=Release -DVARN3D_BUILD_TESTS=OFF \
        -DVARN3D_BUILD_EXAMPLES=OFF -DVARN3D_BUILD_BENCH=OFF
    quietly cmake --build "$build/here" --target varn3d --parallel "$(nproc)"
    files=$build/windows-files
    rm -rf "$files"
    mkdir -p "$files/here" "$files/there"
    cp examples/data/duck.ply "$files/Ente-ü-鴨.ply"
    on_windows() {
        LC_ALL=C.UTF-8 WINEPREFIX="$build/wine" WINEDEBUG=-all \
            $emulator "$build/windows/tools/varn3d.exe" "$@"
    }
    (cd "$files/here" && run_program "$build/here/tools/varn3d")
    (cd "$files/there" && run_program on_windows)
    quietly diff -r "$files/here" "$files/there"
    result="$result, the program's files"
}

run_program() {
    "$@" ../Ente-ü-鴨.ply --quiet --check --vtk grün.vtk --tetgen 四面体 --hull h.ply
    # This replaces the older file.
    "$@" h.ply --quiet --vtk grün.vtk --medit m.mesh
    "$@" - --quiet --vtk input.vtu <h.ply
    "$@" missing-ü.ply >message 2>&1 && exit 1
    sed -i 's/\r$//' message
}

# The compiler's message is shown: another error would also be a refusal.
x87_is_refused() {
    refusal=$build/refusal
    if i686-linux-gnu-g++ -std=c++17 -I. -fsyntax-only dt3Library/GeomTest3.cpp 2>"$refusal"; then
        echo "FAILED on $platform: x87 registers are not refused"
        exit 1
    fi
    quietly grep 'needs double operations rounded to double' "$refusal"
    grep '#error' "$refusal" | sed -n '1s/.*#error/x87:/p'
}

check() {
    emulator=
    case $platform in
    x86-64)
        install_missing g++
        native g++
        digests g++
        ;;
    x86-64-portable)
        install_missing g++
        native g++ -DVARN3D_NO_AVX2
        digests g++
        ;;
    x86-64-libc++)
        install_missing clang libc++-dev libc++abi-dev
        native clang++ -stdlib=libc++
        digests clang++
        ;;
    standard-only)
        # As compilers see the library that have none of g++'s extensions.
        install_missing clang
        native clang++ "-U__GNUC__ -U__SIZEOF_INT128__"
        digests clang++
        ;;
    i686)
        cross i686-linux-gnu i386
        tests
        x87_is_refused
        ;;
    aarch64) emulated aarch64 arm64 ;;
    s390x) emulated s390x s390x ;;
    windows)
        install_missing g++-mingw-w64-x86-64 wine64
        emulator=/usr/lib/wine/wine64
        unpack amd64 libcli11-dev
        configure --toolchain "$root/cmake/toolchains/x86_64-w64-mingw32.cmake" \
            -DVARN3D_BUILD_TESTS=OFF -DCMAKE_PREFIX_PATH="$build/debian-amd64/usr"
        digests x86_64-w64-mingw32-g++-posix
        windows_program
        ;;
    *)
        echo "Unknown platform: $platform" >&2
        exit 2
        ;;
    esac
}

: >"$table"
for platform in "$@"; do
    check
    echo "$platform: $result"
    echo "| $platform | $version | ${emulator##*/} | $result |" >>"$table"
done
echo
echo "| platform | compiler | emulator | as recorded, passed, the same |"
echo "|---|---|---|---|"
cat "$table"
