"""varn3d beside scipy where that is right, and by exact properties where it is not."""

import doctest
import gc
import inspect
import itertools
import os
import pickle
import signal
import subprocess
import sys
import textwrap
import threading

import numpy as np
import pytest
import scipy.spatial
import varn3d
from varn3d import Delaunay, FlatError


def uniform(n, seed=0):
    return np.random.default_rng(seed).random((n, 3))


def grid(n, step=1.0):
    return step * np.indices((n, n, n)).reshape(3, -1).T


CUBE = grid(2)
DIRECTIONS = uniform(300) - 0.5
SETS = {
    "four": np.vstack([np.zeros(3), np.eye(3)]),
    "uniform": uniform(1000),
    "grid": grid(7),
    "rounded_grid": grid(9, 0.1),
    "sphere": DIRECTIONS / np.linalg.norm(DIRECTIONS, axis=1)[:, None],
    "far": 1e6 + 1e-9 * uniform(300),
    "duplicates": np.vstack([uniform(200), uniform(200)[::-1], -0.0 * CUBE, CUBE]),
}
ARRAYS = "points", "simplices", "neighbors", "convex_hull", "duplicates"


@pytest.fixture(autouse=True)
def silence(capfd):
    """Nothing is ever printed."""
    yield
    assert capfd.readouterr() == ("", "")


@pytest.fixture(params=SETS)
def points(request):
    return SETS[request.param].copy()


def rows(table):
    """The rows as a set, whatever the order in each."""
    return {tuple(row) for row in np.sort(table, axis=1).tolist()}


def determinants(points, quads):
    """Six times the volumes of quadruples of points, exact if the coordinates are integers."""
    a, b, c, d = np.moveaxis(points[quads], 1, 0)
    (ux, uy, uz), (vx, vy, vz), (wx, wy, wz) = ((p - a).T for p in (b, c, d))
    return ux * (vy * wz - vz * wy) + uy * (vz * wx - vx * wz) + uz * (vx * wy - vy * wx)


def assert_same(a, b):
    for name in ARRAYS:
        assert np.array_equal(getattr(a, name), getattr(b, name)), name


def test_arrays_fit_together(points):
    mesh = Delaunay(points)
    assert mesh.check() and np.shares_memory(mesh.points, points)
    simplices, neighbors = mesh.simplices, mesh.neighbors
    integers = np.vectorize(int, otypes=[object])(points * 2.0**100)
    assert (determinants(integers, simplices) > 0).all()
    hull = set()
    for k in range(4):
        across = neighbors[:, k]
        facets = np.delete(simplices, k, axis=1)
        hull |= rows(facets[across < 0])
        # A neighbour has the facet's three corners, and this tetrahedron opposite its fourth.
        inner = np.flatnonzero(across >= 0)
        equal = facets[inner][:, :, None] == simplices[across[inner]][:, None, :]
        assert equal.any(axis=2).all()
        assert np.array_equal(neighbors[across[inner], equal.any(axis=1).argmin(axis=1)], inner)
    assert rows(mesh.convex_hull) == hull and len(mesh.convex_hull) == len(hull)
    for facet in mesh.convex_hull:
        beyond = np.column_stack([np.tile(facet, (len(points), 1)), np.arange(len(points))])
        assert (determinants(integers, beyond) <= 0).all()

    first = {}
    pairs = [[i, first.setdefault(tuple(p + 0.0), i)] for i, p in enumerate(points)]
    assert mesh.duplicates.tolist() == [pair for pair in pairs if pair[0] != pair[1]]
    assert set(simplices.ravel().tolist()) == set(first.values())
    edges = {(a, b) for tet in simplices.tolist() for a, b in itertools.permutations(tet, 2)}
    starts, others = mesh.vertex_neighbor_vertices
    owners = np.repeat(np.arange(len(points)), np.diff(starts))
    assert list(zip(owners.tolist(), others.tolist())) == sorted(edges)


@pytest.mark.parametrize("n", [5, 30, 1000, 5000])
def test_random_points_as_scipy(n):
    for seed in range(max(1, 200 // n)):
        ours, theirs = (module.Delaunay(uniform(n, seed)) for module in (varn3d, scipy.spatial))
        xi = 1.4 * uniform(n, seed + 1000).reshape(5, -1, 3) - 0.2
        for name in "simplices", "convex_hull", "neighbors", "points":
            a, b = getattr(ours, name), getattr(theirs, name)
            assert (a.shape, a.dtype, type(a)) == (b.shape, b.dtype, type(b))
            assert name == "neighbors" or rows(a) == rows(b)
        for a, b in zip(ours.vertex_neighbor_vertices, theirs.vertex_neighbor_vertices):
            assert a.shape == b.shape and a.dtype == b.dtype
        for queries in xi, xi[0, 0], xi[:0]:
            a, b = ours.find_simplex(queries), theirs.find_simplex(queries)
            assert (a.shape, a.dtype, type(a)) == (b.shape, b.dtype, type(b))
            assert np.array_equal(a < 0, b < 0)
            corners = ours.simplices[a[a >= 0]], theirs.simplices[b[b >= 0]]
            assert np.array_equal(*map(np.sort, corners))
        distances = scipy.spatial.cKDTree(ours.points).query(xi)[0]
        nearest = ours.points[ours.nearest_vertex(xi)]
        assert np.linalg.norm(nearest - xi, axis=-1) == pytest.approx(distances, rel=1e-14)


def test_voronoi_volumes():
    points = uniform(300)
    volumes = Delaunay(np.vstack([points, points[:2]])).voronoi_volumes()
    assert np.array_equal(volumes[300:], volumes[:2])
    voronoi = scipy.spatial.Voronoi(points)
    for volume, region in zip(volumes, voronoi.point_region):
        corners = voronoi.regions[region]
        expected = np.inf if -1 in corners else scipy.spatial.ConvexHull(voronoi.vertices[corners]).volume
        assert volume == pytest.approx(expected, rel=1e-9)


def test_grids_are_filled_without_flat_tetrahedra():
    mesh = Delaunay(grid(12))
    volumes = determinants(mesh.points, mesh.simplices)
    assert volumes.min() >= 1 and volumes.sum() == 6 * 11**3
    cells = np.full((12, 12, 12), np.inf)
    cells[1:-1, 1:-1, 1:-1] = 1
    assert mesh.voronoi_volumes().reshape(cells.shape) == pytest.approx(cells)
    # Eight grid points are equally near: the first one counts.
    assert np.array_equal(mesh.nearest_vertex(grid(11) + 0.5), grid(11) @ [144, 12, 1])


def test_the_hulls_surface_is_inside():
    mesh = Delaunay(CUBE)
    for axis, side in itertools.product(range(3), (0.0, 1.0)):
        xi = uniform(50)
        xi[:, axis] = side
        assert (mesh.find_simplex(xi) >= 0).all() and np.isfinite(mesh.interpolate(range(8), xi)).all()
        xi[:, axis] = np.nextafter(side, 10 * side - 5)
        assert (mesh.find_simplex(xi) == -1).all() and np.isnan(mesh.interpolate(range(8), xi)).all()


def test_linear_functions_are_interpolated_as_they_are(points):
    mesh = Delaunay(points)
    low, size = points.min(axis=0), np.ptp(points, axis=0).max()
    corners = points[mesh.simplices]
    # Also where nearly flat tetrahedra hide: on the lines and planes of grids.
    xi = np.vstack([low + size * uniform(2000), (corners[:, 0] + corners[:, 1]) / 2,
                    (corners[:, 0] + corners[:, 2]) / 2, points])
    found = mesh.interpolate((points - low) / size, xi)
    inside = mesh.find_simplex(xi) >= 0
    assert np.array_equal(np.isnan(found).any(axis=1), ~inside)
    assert np.abs(found - (xi - low) / size)[inside].max() < 1e-12
    firsts = np.arange(len(points))
    firsts[mesh.duplicates[:, 0]] = mesh.duplicates[:, 1]
    # At the points themselves the values are exact, and no other value matters.
    holes = np.where(firsts % 2 == 0, firsts, np.nan)
    assert np.array_equal(mesh.interpolate(holes, points), holes, equal_nan=True)
    assert np.array_equal(mesh.nearest_vertex(points), firsts)
    assert mesh.interpolate(points, xi.reshape(-1, 1, 3)).shape == (len(xi), 1, 3)


def links(simplices, neighbors):
    """What lies opposite which corner of which tetrahedron, whatever their order."""
    names = [tuple(row) for row in np.sort(simplices).tolist()] + ["outside"]
    return {(name, corner, names[neighbor]) for name, row, across in zip(names, simplices, neighbors)
            for corner, neighbor in zip(row.tolist(), across.tolist())}


@pytest.mark.skipif("VARN3D_PROGRAM" not in os.environ, reason="it names the program varn3d")
@pytest.mark.parametrize("points", [SETS["four"], uniform(5000)])
def test_the_same_mesh_as_the_program(points, tmp_path):
    source, written = tmp_path / "points.xyz", tmp_path / "mesh"
    source.write_text("".join("%r %r %r\n" % tuple(p) for p in points.tolist()))
    subprocess.run([os.environ["VARN3D_PROGRAM"], source, "--tetgen", written], check=True,
                   capture_output=True)
    tetrahedra, neighbors = (
        np.loadtxt(f"{written}.{kind}", skiprows=1, dtype=int, ndmin=2)[:, 1:5]
        for kind in ("ele", "neigh"))
    mesh = Delaunay(points)
    assert links(tetrahedra, neighbors) == links(mesh.simplices, mesh.neighbors)


def test_adding_points_and_keeping_meshes(points):
    whole = Delaunay(points)
    mesh = Delaunay(np.vstack([points[:4], CUBE - 3, points[4:20]]))
    before = {name: getattr(mesh, name) for name in ARRAYS}
    copies = {name: array.copy() for name, array in before.items()}
    for part in points[20:20], points[20:25], points[25:], points[:50]:
        mesh.add_points(part)
    assert np.array_equal(mesh.points[:12], before["points"][:12]) and mesh.check()
    again = pickle.loads(pickle.dumps(mesh))
    assert_same(mesh, again)
    assert np.array_equal(again.find_simplex(points), mesh.find_simplex(points))
    del mesh, again
    gc.collect()
    assert all(np.array_equal(before[name], copies[name]) for name in ARRAYS)
    with pytest.raises(ValueError, match="read-only"):
        before["simplices"][0] = 0
    assert_same(whole, Delaunay(np.asfortranarray(points)))
    assert_same(whole, Delaunay(points.tolist()))


def test_the_same_arrays_in_another_process():
    def arrays(meshes):
        return [[getattr(mesh, name) for name in ARRAYS] for mesh in meshes]

    meshes = [Delaunay(points) for points in SETS.values()]
    meshes[0].add_points(SETS["grid"])
    meshes[1].add_points(uniform(400, 1))
    script = "\n".join([
        "import pickle, sys", f"ARRAYS = {ARRAYS}", textwrap.dedent(inspect.getsource(arrays)),
        "pickle.dump(arrays(pickle.load(sys.stdin.buffer)), sys.stdout.buffer)"])
    # There each block of memory lies below the one before.
    elsewhere = {**os.environ, "MALLOC_MMAP_THRESHOLD_": "1024", "MALLOC_MMAP_MAX_": "1000000"}
    other = subprocess.run([sys.executable, "-c", script], input=pickle.dumps(meshes), check=True,
                           capture_output=True, env=elsewhere)
    np.testing.assert_equal(pickle.loads(other.stdout), arrays(meshes))


def nested(row, value):
    rows = np.ones((5, 3)).tolist()
    rows[row] = value
    return rows


@pytest.mark.parametrize("bad, message", [
    (np.ones((5, 2)), "points must have three columns, not shape (5, 2): row 0 is [[1.0, 1.0]]"),
    (np.ones(3), "points must have shape (n, 3), not (3,)"),
    (np.ones((2, 5, 3)), "points must have shape (n, 3), not (2, 5, 3)"),
    ([], "points must have three columns, not shape (0,)"),
    (nested(3, [1, np.nan, 1]), "points: row 3 is not finite: [1.0, nan, 1.0]"),
    (nested(4, [1, 1, -np.inf]), "points: row 4 is not finite: [1.0, 1.0, -inf]"),
    (nested(2, [1, 1]), "points: row 2 is not three real numbers: [1, 1]"),
    (nested(1, [1, "x", 1]), "points: row 1 is not three real numbers: [1, 'x', 1]"),
    (nested(1, [1, 1j, 1]), "points: row 1 is not three real numbers: [1, 1j, 1]"),
    (nested(2, [1, 10**400, 1]), "points: row 2 is not three real numbers"),
    (None, "points must have three columns, not shape ()"),
    (object(), "points: not an array of real numbers"),
    (np.ma.masked_equal(np.arange(15.0).reshape(5, 3), 7), "points: row 2 is not finite"),
])
def test_bad_input_names_its_first_row(bad, message):
    mesh = Delaunay(CUBE)
    for call in Delaunay, mesh.add_points:
        with pytest.raises(ValueError) as failure:
            call(bad)
        assert str(failure.value).startswith(message)
    assert_same(mesh, Delaunay(CUBE))


def test_bad_queries_and_values():
    mesh = Delaunay(CUBE)
    queries = np.zeros((2, 3, 3))
    queries[1, 2, 0] = np.nan
    for call in mesh.find_simplex, mesh.nearest_vertex, lambda xi: mesh.interpolate(range(8), xi):
        with pytest.raises(ValueError, match=r"xi: row \(1, 2\) is not finite"):
            call(queries)
        with pytest.raises(ValueError, match="xi must have three columns"):
            call([1, 2])
    for values in range(7), np.ones((8, 1, 1)), 1.0:
        with pytest.raises(ValueError, match="values"):
            mesh.interpolate(values, queries[0])


@pytest.mark.parametrize("points, dimension", [
    (np.empty((0, 3)), -1),
    ([[1, 2, 3]] * 5, 0),
    (np.outer(range(9), [1, 2, 3]), 1),
    (0.1 + 0.3 * np.outer(range(3), [1, 0, 0]), 1),
    (SETS["grid"] * [1, 0, 1], 2),
])
def test_flat_points(points, dimension):
    with pytest.raises(FlatError) as failure:
        Delaunay(points)
    assert failure.value.dimension == dimension
    again = pickle.loads(pickle.dumps(failure.value))
    assert again.dimension == dimension and str(again) == str(failure.value)
    # The least that can lift a point off the plane makes a mesh.
    if dimension == 2:
        points[10] += [0, 5e-324, 0]
        assert Delaunay(points).check()


class Rung(Exception):
    pass


class Alarm:
    """Rings every 10 ms within its scope: counts, or raises Rung."""

    def __init__(self, raises):
        self.raises = raises
        self.count = 0

    def ring(self, *_):
        self.count += 1
        if self.raises:
            signal.setitimer(signal.ITIMER_REAL, 0)
            raise Rung

    def __enter__(self):
        self.previous = signal.signal(signal.SIGALRM, self.ring)
        signal.setitimer(signal.ITIMER_REAL, 0.01, 0.01)
        return self

    def __exit__(self, *_):
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, self.previous)


def test_signals_are_heard_and_end_what_takes_long():
    n = 40000
    many = uniform(3 * n)
    mesh = Delaunay(many[:n])
    calls = [
        lambda: Delaunay(many),
        lambda: mesh.find_simplex(many),
        lambda: mesh.nearest_vertex(many),
        lambda: mesh.interpolate(many[:n], many),
        mesh.voronoi_volumes,
    ]
    for call in calls:
        with Alarm(raises=False) as alarm:
            call()
        assert alarm.count > 3
        with pytest.raises(Rung), Alarm(raises=True):
            call()
    for count in n // 4, 2 * n:
        mesh = Delaunay(many[:n])
        with pytest.raises(Rung), Alarm(raises=True):
            mesh.add_points(many[n:n + count])
        assert len(np.unique(mesh.simplices)) < n + count and mesh.check()
        mesh.add_points(many[len(mesh.points):n + count])
        assert rows(mesh.simplices) == rows(Delaunay(many[:n + count]).simplices)
    with pytest.raises(Rung), Alarm(raises=True):
        mesh.vertex_neighbor_vertices


def test_threads_share_a_mesh():
    points = uniform(20000)
    mesh = Delaunay(points[:1000])
    expected = Delaunay(points).nearest_vertex(points)
    failures = []

    def query(seed):
        try:
            for _ in range(20):
                xi = uniform(500, seed)
                assert (mesh.find_simplex(0.5 + 0.1 * (xi - 0.5)) >= 0).all()
                assert (mesh.nearest_vertex(xi) < len(mesh.points)).all()
                assert mesh.simplices.max() < len(mesh.points)
        except Exception as failure:
            failures.append(failure)

    threads = [threading.Thread(target=query, args=(seed,)) for seed in range(3)]
    for thread in threads:
        thread.start()
    for start in range(1000, 20000, 1900):
        mesh.add_points(points[start:start + 1900])
    for thread in threads:
        thread.join()
    assert not failures
    assert np.array_equal(mesh.nearest_vertex(points), expected)


SCRIPT = """
points = np.random.default_rng(5).normal(size=(2000, 3))
tri = Delaunay(points)
lengths = np.linalg.norm(points[tri.simplices[:, 1:]] - points[tri.simplices[:, :1]], axis=-1)
on_hull = np.unique(tri.convex_hull)
border = tri.simplices[(tri.neighbors == -1).any(axis=1)]
area = np.linalg.norm(np.cross(*np.diff(points[tri.convex_hull], axis=1).swapaxes(0, 1)), axis=1).sum() / 2
cells = tri.find_simplex(points[None, :100] * 1.5)
inside = cells >= 0
means = points[tri.simplices[cells[inside]]].mean(axis=1)
"""


def test_a_script_for_scipy_runs_with_another_import():
    results = []
    for package in "scipy.spatial", "varn3d":
        names = {"np": np}
        exec(f"from {package} import Delaunay\n" + SCRIPT, names)
        results.append(names)
    theirs, ours = results
    assert type(ours["tri"]) is Delaunay and rows(ours["border"]) == rows(theirs["border"])
    for name in "on_hull", "inside":
        assert np.array_equal(ours[name], theirs[name])
    for name in "area", "means":
        assert ours[name] == pytest.approx(theirs[name], rel=1e-12)
    assert ours["lengths"].shape == theirs["lengths"].shape


def test_help_suffices():
    assert doctest.testmod(varn3d._delaunay).failed == 0
    for name, member in vars(Delaunay).items():
        if not name.startswith("_"):
            call = member.fget if isinstance(member, property) else member
            assert len(inspect.getdoc(member)) > 60
            parameters = list(inspect.signature(call).parameters.values())[1:]
            assert all(p.annotation is not p.empty for p in parameters)
            assert "return" in call.__annotations__
