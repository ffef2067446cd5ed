#!/bin/sh
# Makes the pictures in docs/images anew, on a virtual screen: the shipped scan as tetrahedra, drawn by
# draw-scan.py, and a part of it in Geomview. Installs what is missing (Debian).
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
images="$root/docs/images"
scan="$root/examples/data/duck.ply"
build="$root/build/pictures"
. "$root/scripts/packages.sh"

install_missing g++ make cmake libcli11-dev xvfb xauth geomview netpbm python3-matplotlib \
    python3-scipy python3-vtk9
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DVARN3D_BUILD_TESTS=OFF \
    -DVARN3D_BUILD_EXAMPLES=OFF -DVARN3D_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" --target varn3d --parallel "$(nproc)" >/dev/null
varn3d="$build/tools/varn3d"
cd "$build"

on_screen() { xvfb-run -a -s "-screen 0 1280x1024x24" "$@"; }
quantised() { pnmquant 255 2>/dev/null | pnmtopng -compression 9 2>/dev/null; }

on_screen /usr/bin/python3 "$root/scripts/draw-scan.py" "$varn3d" "$scan" drawn.png
pngtopnm drawn.png | quantised >"$images/scan.png"

# Geomview takes commands from standard input while it runs. Points nest in its lists, so that
# large files need more than the usual stack; a part of the scan doesn't.
awk 'NR % 64 == 0' drawn.xyz >few.xyz
"$varn3d" few.xyz --quiet --geomview few.list
rm -f drawn.ppm
commands() {
    echo '(bbox-draw allgeoms no) (backcolor allcams 0.85 0.9 0.95)'
    sleep 2
    echo '(snapshot c0 drawn.ppm ppm 800 680)'
    sleep 2
    echo '(exit)'
}
commands | (ulimit -s unlimited; on_screen geomview -nopanels -wpos 800x680@0,0 few.list -c -)
pnmcrop drawn.ppm 2>/dev/null | quantised >"$images/geomview.png"
ls -l "$images"/*.png
