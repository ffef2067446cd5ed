#!/bin/sh
# Makes the release packages in build/packages: a .deb and a .tar.gz with the static and the shared
# library and the program, and the .deb python3-varn3d. Installs what is missing (Debian).
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
build="$root/build/packages"
. "$root/scripts/packages.sh"

install_missing g++ make cmake dpkg-dev libcli11-dev python3-dev python3-numpy \
    pybind11-dev
for linkage in static shared; do
    shared=OFF
    tools=ON
    [ $linkage = static ] || { shared=ON; tools=OFF; }
    cmake -S "$root" -B "$build/$linkage" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
        -DCMAKE_INSTALL_LIBDIR=lib -DBUILD_SHARED_LIBS=$shared -DVARN3D_BUILD_TOOLS=$tools \
        -DVARN3D_BUILD_PYTHON=$tools -DVARN3D_BUILD_TESTS=OFF -DVARN3D_BUILD_EXAMPLES=OFF \
        -DVARN3D_BUILD_BENCH=OFF
    cmake --build "$build/$linkage" --parallel "$(nproc)"
done
cd "$build"
cpack --config static/CPackConfig.cmake \
    -D CPACK_INSTALL_CMAKE_PROJECTS="$build/static;Varn3D;ALL;/;$build/shared;Varn3D;ALL;/"

# A compiled module is for one version of Python.
python=$(/usr/bin/python3 -c 'from sys import version_info as v
print(f"python3 (>= 3.{v.minor}), python3 (<< 3.{v.minor + 1})")')
cpack --config static/CPackConfig.cmake -G DEB -D CPACK_PACKAGE_NAME=python3-varn3d \
    -D CPACK_INSTALL_CMAKE_PROJECTS="$build/static;Varn3D;python;/" \
    -D CPACK_DEBIAN_PACKAGE_DEPENDS="$python, python3-numpy" \
    -D CPACK_DEBIAN_PACKAGE_SECTION=python -D CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS=OFF

# Nothing but what it holds and depends on is needed.
rm -rf unpacked
dpkg-deb -x python3-varn3d_*.deb unpacked
/usr/bin/python3 -I -c '
import sys; sys.path.insert(0, "unpacked/usr/lib/python3/dist-packages")
import varn3d
assert varn3d.Delaunay([[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1], [1, 1, 1]]).check()'
