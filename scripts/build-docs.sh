#!/bin/sh
# Makes the reference manual of the public headers in build/docs/html (or below the directory given)
# with doxygen, installing it if missing (Debian). Anything undocumented is an error.
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
output=${1:-$root/build/docs}
. "$root/scripts/packages.sh"

install_missing doxygen
mkdir -p "$output"
cd "$root"
version=$(sed -n 's/^#define VARN3D_VERSION_[A-Z]* //p' dt3Library/version.h | paste -s -d .)
headers=$(sed -n '/^set(VARN3D_PUBLIC_HEADERS/,/)$/ s/^ *\(dt3Library[^)]*\))*$/\1/p' CMakeLists.txt)
{
    cat docs/Doxyfile
    echo "PROJECT_NUMBER = $version"
    echo "OUTPUT_DIRECTORY = $output"
    echo "INPUT = docs/reference.md" $headers
} | doxygen -
echo "Made $output/html/index.html"
