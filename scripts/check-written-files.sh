#!/bin/sh
# check-written-files.sh [PROGRAM]: lets Gmsh (.mesh), TetGen (.node, .ele) and F3D (.vtk) read what
# varn3d writes. They must find as many vertices and tetrahedra as varn3d, no fault in the files, and
# TetGen must find the mesh consistent and Delaunay. Builds varn3d and installs what is missing
# (Debian); if the PROGRAM is named it does neither, and ends with 77 when one of the tools is missing.
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
if [ $# -gt 0 ]; then
    varn3d=$1
else
    . "$root/scripts/packages.sh"
    install_missing g++ make cmake libcli11-dev gmsh tetgen f3d
    cmake -S "$root" -B "$root/build/example" -DCMAKE_BUILD_TYPE=Release \
        -DVARN3D_BUILD_TESTS=OFF -DVARN3D_BUILD_EXAMPLES=OFF -DVARN3D_BUILD_BENCH=OFF >/dev/null
    cmake --build "$root/build/example" --target varn3d --parallel "$(nproc)" >/dev/null
    varn3d=$root/build/example/tools/varn3d
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

fail() {
    cat said >&2
    echo "$tool, $name: $1" >&2
    exit 1
}
says() { grep -q -- "$1" said || fail "doesn't say \"$1\""; }
has_no_complaint() {
    if grep -iqE 'warn|error|abnormity|degenerat|inverted|terminate' said; then
        fail "complains"
    fi
}

with_gmsh() {
    timeout 300 gmsh -0 mesh.mesh -o read.geo_unrolled >said 2>&1 || fail "fails"
    has_no_complaint
    says " $points nodes\$"
    says " $tets tetrahedra\$"
}
# It may hang over a faulty mesh. It faults the segments even of its own meshes of grids, and breaks
# ties between cospherical points in its own way: neither is looked at.
with_tetgen() {
    timeout 300 tetgen -rCC mesh >said 2>&1 || fail "fails"
    has_no_complaint
    says "Mesh points: $points\$"
    says "Mesh tetrahedra: $tets\$"
    says "the mesh appears to be consistent"
    says "Mesh boundaries connected correctly"
    says "$1"
}
with_f3d() {
    timeout 300 f3d mesh.vtk --verbose --no-render >said 2>&1 || fail "fails"
    has_no_complaint
    says "Number of points: $points\$"
    says "Number of cells: $tets\$"
    says "firstEqual : int"
}

# read_by_all NAME POINTS DELAUNAY [OPTION...]: DELAUNAY is what TetGen must say.
read_by_all() {
    name=$1 input=$2 delaunay=$3
    shift 3
    "$varn3d" "$input" --medit mesh.mesh --tetgen mesh --vtk mesh.vtk "$@" >summary
    points=$(sed -n 's/^points read *//p' summary)
    tets=$(sed -n -E 's/^tetrahedra( kept)? +//p' summary | tail -n 1)
    for tool in gmsh tetgen f3d; do
        command -v $tool >/dev/null || continue
        "with_$tool" "$delaunay"
        echo "$tool, $name: $points points, $tets tetrahedra"
    done
}

awk 'BEGIN { for (i = 0; i < 250; ++i) print i % 5, int(i / 5) % 5, int(i / 25) % 5 }' >grid.xyz
awk 'BEGIN { srand(1); for (i = 0; i < 500; ++i)
    printf "%.17g %.17g %.17g\n", 1e-9 * rand(), 1e-9 * rand(), -1e-9 * rand() }' >tiny.xyz
read_by_all "scan" "$root/examples/data/bunny.xyz" "The mesh is Delaunay"
read_by_all "clipped scan" "$root/examples/data/bunny.xyz" "consistent" --clip 'z<0.3'
read_by_all "grid given twice" grid.xyz "consistent"
read_by_all "tiny box" tiny.xyz "The mesh is Delaunay"

for tool in gmsh tetgen f3d; do
    command -v $tool >/dev/null || missing="${missing:-} $tool"
done
if [ -n "${missing:-}" ]; then
    echo "Not installed, and so not asked:$missing"
    exit 77
fi
