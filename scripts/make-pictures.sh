#!/bin/sh
# Makes the pictures in docs/images anew: the shipped scan, triangulated by the program varn3d and
# drawn by F3D (from VTK) and Geomview (from OOGL) on a virtual screen. Installs what is missing
# (Debian).
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
images="$root/docs/images"
scan="$root/examples/data/bunny.xyz"
build="$root/build/pictures"
. "$root/scripts/packages.sh"

install_missing g++ make cmake libcli11-dev xvfb xauth f3d geomview netpbm
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DVARN3D_BUILD_TESTS=OFF \
    -DVARN3D_BUILD_EXAMPLES=OFF -DVARN3D_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" --target varn3d --parallel "$(nproc)" >/dev/null
varn3d="$build/tools/varn3d"
cd "$build"

on_screen() { xvfb-run -a -s "-screen 0 1280x1024x24" "$@"; }
with_f3d() {
    on_screen f3d "$1" --output drawn.png --resolution 800,680 --edges --fxaa --tone-mapping \
        --filename=0 --bg-color 1,1,1 --color "$3" --roughness 0.9 --camera-position 2,6.5,19 \
        --camera-focal-point 0,4.75,0 --camera-view-up 0,1,0
    pngtopnm drawn.png | pnmquant 128 2>/dev/null | pnmtopng -compression 9 >"$2" 2>/dev/null
}

"$varn3d" "$scan" --vtk hull.vtk >summary
"$varn3d" "$scan" --vtk inside.vtk --clip 'z<0.3' >summary
with_f3d hull.vtk "$images/scan-hull.png" 0.75,0.88,1
with_f3d inside.vtk "$images/scan-inside.png" 1,0.93,0.8

# Geomview takes commands from standard input while it runs. Points nest in its lists, so that
# large files need more than the usual stack; a part of the scan doesn't.
awk 'NR % 16 == 0' "$scan" >few.xyz
"$varn3d" few.xyz --geomview few.list >summary
rm -f drawn.ppm
commands() {
    echo '(bbox-draw allgeoms no) (backcolor allcams 0.85 0.9 0.95)'
    sleep 2
    echo '(snapshot c0 drawn.ppm ppm 800 680)'
    sleep 2
    echo '(exit)'
}
commands | (ulimit -s unlimited; on_screen geomview -nopanels -wpos 800x680@0,0 few.list -c -)
pnmcrop drawn.ppm 2>/dev/null | pnmquant 128 2>/dev/null |
    pnmtopng -compression 9 >"$images/geomview.png" 2>/dev/null
ls -l "$images"/*.png
