#!/bin/sh
# check-written-files.sh [PROGRAM]: lets the programs that they are meant for read what varn3d writes:
# Gmsh (.mesh, .vtk, .ply), TetGen (.node, .ele, .face; it also finds the .neigh that it would write),
# F3D with VTK's readers (.vtk, .vtu, .ply, .obj), meshio (all of them), Geomview (.list). They must
# find as many vertices, cells and facets as varn3d, the same volume, no fault in the files, and TetGen
# must find the mesh consistent and Delaunay. What TetGen and meshio write of these points must make
# the same mesh. Builds varn3d and installs what is missing (Debian); if the PROGRAM is named it does
# neither, and ends with 77 when one of the tools is missing.
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
if [ $# -gt 0 ]; then
    varn3d=$(realpath "$1")
else
    . "$root/scripts/packages.sh"
    install_missing g++ make cmake libcli11-dev gmsh tetgen f3d python3-meshio \
        geomview xvfb xauth
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
    for file in mesh.mesh mesh.vtk ascii.ply; do
        timeout 300 gmsh -0 $file -o read.geo_unrolled >said 2>&1 || fail "fails"
        has_no_complaint
        case $file in
            mesh.mesh) says " $points nodes\$"; says " $tets tetrahedra\$" ;;
            mesh.vtk) says " $points points\$"; says " $tets cells\$" ;;
            ascii.ply) says " $hull triangles\$" ;;
        esac
    done
}
# It may hang over a faulty mesh. It faults the segments even of its own meshes of grids, and breaks
# ties between cospherical points in its own way: neither is looked at. It keeps the order of the
# tetrahedra, so that its neighbours must be ours; the facets of the boundary that it finds by itself
# must be ours as well. Where a clipped mesh hangs together by a vertex only it takes back no facets,
# not even its own.
with_tetgen() {
    cp mesh.node plain.node
    cp mesh.ele plain.ele
    timeout 300 tetgen -rnCC plain >said 2>&1 || fail "fails"
    if [ "$clipped" = 0 ]; then
        timeout 300 tetgen -rCC mesh >>said 2>&1 || fail "fails"
    fi
    has_no_complaint
    says "Mesh points: $points\$"
    says "Mesh tetrahedra: $tets\$"
    says "Mesh faces on facets: $facets\$"
    says "the mesh appears to be consistent"
    says "Mesh boundaries connected correctly"
    says "$1"
    awk 'NR > 1 && !/#/ { print $2, $3, $4, $5 }' plain.1.neigh >theirs
    awk 'NR > 1 { print $2, $3, $4, $5 }' mesh.neigh | cmp - theirs >said 2>&1 ||
        fail "finds other neighbours"
    reads_the_same plain.1.node
    boundary plain.1.face >theirs
    boundary mesh.face | cmp - theirs >said 2>&1 || fail "finds other facets"
}
boundary() {
    awk 'NR > 1 && !/#/ {
            a = $2 + 0; b = $3 + 0; c = $4 + 0
            if (a > b) { t = a; a = b; b = t }
            if (b > c) { t = b; b = c; c = t }
            if (a > b) { t = a; a = b; b = t }
            print a, b, c }' "$1" | sort
}
with_f3d() {
    for file in mesh.vtk ascii.vtk mesh.vtu; do
        timeout 300 f3d $file --verbose --no-render >said 2>&1 || fail "fails"
        has_no_complaint
        says "Number of points: $points\$"
        says "Number of cells: $tets\$"
        says "firstEqual : int"
        says "n_mber : double : \[1, $points\]"
    done
    for file in hull.ply ascii.ply; do
        timeout 300 f3d $file --verbose --no-render >said 2>&1 || fail "fails"
        has_no_complaint
        says "Number of polygons: $hull\$"
    done
    timeout 300 f3d hull.obj --verbose --no-render >said 2>&1 || fail "fails"
    has_no_complaint
}
with_meshio() {
    timeout 300 /usr/bin/python3 - "$points" "$tets" "$hull" "$clipped" >said 2>&1 <<'END' || fail "disagrees"
import sys
import meshio
import numpy

points, tets, hull, clipped = (int(word) for word in sys.argv[1:])
volumes = []
for name in ["mesh.vtk", "ascii.vtk", "mesh.vtu", "mesh.mesh", "mesh.ele"]:
    mesh = meshio.read(name)
    corners = mesh.points[mesh.cells[0].data]
    edges = corners[:, 1:] - corners[:, :1]
    assert (len(mesh.points), len(corners)) == (points, tets), name
    volumes.append(numpy.linalg.det(edges).sum())
    if name[-3:-1] == "vt":
        assert (mesh.point_data["n_mber"].ravel() == range(1, points + 1)).all(), name
for name in ["hull.ply", "ascii.ply", "hull.obj"]:
    mesh = meshio.read(name)
    corners = mesh.points[mesh.cells[0].data] - mesh.points[0]
    assert len(corners) == hull, name
    if not clipped:
        volumes.append(numpy.linalg.det(corners).sum())
assert min(volumes) > 0.999999 * max(volumes) > 0, volumes
mesh = meshio.read("mesh.vtu")
mesh.point_data = {"number": mesh.point_data["n_mber"].ravel()}
meshio.write("theirs.node", mesh)
mesh.cells = [meshio.CellBlock("triangle", numpy.array([[0, 1, 2]]))]
for name in ["ascii", "binary"]:
    meshio.write(f"theirs-{name}.ply", mesh, binary=name == "binary")
mesh.point_data = {}
for name in ["theirs.obj", "theirs.off"]:
    meshio.write(name, mesh)
END
    reads_the_same theirs.node theirs-ascii.ply theirs-binary.ply theirs.obj theirs.off
}
# Whether files that others have written of the points make the same mesh.
reads_the_same() {
    head -n 4 summary >ours
    for file in "$@"; do
        "$varn3d" "$file" >said 2>&1 || fail "writes a $file that isn't read"
        head -n 4 said | cmp -s - ours || fail "writes a $file that makes another mesh"
    done
}
# It says nothing about files that it understands. Points nest in its lists, which takes it much
# stack, so that it gets some of them only.
with_geomview() {
    awk 'NR % 16 == 1' numbered.xyz >few.xyz
    "$varn3d" few.xyz --quiet --geomview few.list
    (
        # shellcheck disable=SC3045
        ulimit -s unlimited 2>/dev/null || true
        timeout 300 xvfb-run -a geomview -nopanels few.list -c '(exit)' >said 2>&1
    ) || fail "fails"
    [ ! -s said ] || fail "complains"
}

# have TOOL: whether it is installed.
have() {
    case $1 in
        meshio) /usr/bin/python3 -c 'import meshio' 2>/dev/null ;;
        geomview) command -v geomview >/dev/null && command -v xvfb-run >/dev/null ;;
        *) command -v "$1" >/dev/null ;;
    esac
}

# read_by_all NAME POINTS DELAUNAY [OPTION...]: DELAUNAY is what TetGen must say.
read_by_all() {
    name=$1 delaunay=$3
    # A column's name in Latin 1 must not make the XML unreadable.
    awk '$1 ~ /^[-0-9.]/ { print $1, $2, $3, ++n }' "$2" |
        sed '1s/^/# x y z n\xfcmber\n/' >numbered.xyz
    shift 3
    "$varn3d" numbered.xyz --medit mesh.mesh --tetgen mesh --vtk mesh.vtk --hull hull.ply "$@" >summary
    "$varn3d" numbered.xyz --quiet --ascii --vtk ascii.vtk --hull ascii.ply "$@"
    "$varn3d" numbered.xyz --quiet --vtk mesh.vtu --hull hull.obj "$@"
    points=$(sed -n 's/^points read *//p' summary)
    tets=$(sed -n -E 's/^tetrahedra( kept)? +//p' summary | tail -n 1)
    hull=$(sed -n 's/^hull facets *//p' summary)
    facets=$(head -n 1 mesh.face | cut -d ' ' -f 1)
    clipped=$#
    for tool in $tools; do
        have "$tool" || continue
        "with_$tool" "$delaunay"
        echo "$tool, $name: $points points, $tets tetrahedra, $hull facets of the hull"
    done
}

tools="gmsh tetgen f3d meshio geomview"
awk 'BEGIN { for (i = 0; i < 250; ++i) print i % 5, int(i / 5) % 5, int(i / 25) % 5 }' >grid.xyz
awk 'BEGIN { srand(1); for (i = 0; i < 500; ++i)
    printf "%.17g %.17g %.17g\n", 1e-9 * rand(), 1e-9 * rand(), -1e-9 * rand() }' >tiny.xyz
awk 'NR % 16 == 0' "$root/examples/data/duck.ply" >scan.xyz
read_by_all "scan" scan.xyz "The mesh is Delaunay"
read_by_all "clipped scan" scan.xyz "consistent" --clip 'x<10'
read_by_all "grid given twice" grid.xyz "consistent"
read_by_all "tiny box" tiny.xyz "The mesh is Delaunay"

for tool in $tools; do
    have "$tool" || missing="${missing:-} $tool"
done
if [ -n "${missing:-}" ]; then
    echo "Not installed, and so not asked:$missing"
    exit 77
fi
