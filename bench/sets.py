"""The benchmarks' point sets: how each is made, how it is inserted, and what it is compared with."""

from dataclasses import dataclass

ONE_BY_ONE = 0
K, M = 1000, 1000000


@dataclass(frozen=True)
class PointSet:
    name: str
    points: int
    # Arguments of varn3d_points: the shape and its parameters. Equal ones share one file.
    shape: tuple
    # How many equal batches the points come in, in file order; ONE_BY_ONE: single insertions.
    batches: int = 1
    # With single insertions: so many of the first points come as a batch. A library that gets its
    # first points one by one leaves those out that came before the first four not in one plane.
    head: int = 0
    # In general position all engines must find as many tetrahedra; else the mesh is not unique,
    # and the vertices and the volume must agree.
    unique: bool = True
    # Shape of the points to look for in the finished mesh, whose list is measured as well.
    queries: tuple = None
    seed: int = 1


@dataclass(frozen=True)
class Group:
    """Sets that are measured in the same rounds. Each one's cost a point is compared with the
    base's, which is run in the group's every round."""

    name: str
    base: str
    sets: tuple


def cube(name, points, **how):
    return PointSet(name, points, ("cube", points), **how)


def in_batches_of(size, points):
    return cube(f"batches_{size}_{points // K}k", points, batches=points // size)


def along_each_axis(name, points, shape, axes="xyz"):
    """shape holds None where the axis goes."""
    return tuple(
        PointSet(name.format(axis), points, tuple(axis if part is None else part for part in shape))
        for axis in axes
    )


def rods(name, points):
    return along_each_axis(name, points, ("box", points, None, 1, 1e-3))


SCALE = Group(
    "scale",
    "uniform_100k",
    (
        cube("uniform_100k", 100 * K),
        cube("uniform_10k", 10 * K),
        cube("uniform_300k", 300 * K),
        cube("uniform_1M", M),
        cube("uniform_3M", 3 * M),
        cube("uniform_10M", 10 * M),
    ),
)

MEDIUM = Group(
    "medium",
    "uniform_200k",
    (
        cube("uniform_200k", 200 * K),
        in_batches_of(1000, 200 * K),
        in_batches_of(100, 200 * K),
        in_batches_of(10, 200 * K),
        cube("singles_200k", 200 * K, batches=ONE_BY_ONE),
        PointSet("sphere_200k", 200 * K, ("sphere", 200 * K)),
        PointSet("grid_60", 60**3, ("grid", 60, 0, 1), unique=False),
        PointSet("grid01_60", 60**3, ("grid", 60, 0, 0.1), unique=False),
        PointSet("plane300_apex", 300**2 + 1, ("plane_apex", 300), unique=False),
        PointSet("segs_3k", 3 * K, ("segments", 1500, 0)),
        PointSet("segsr_3k", 3 * K, ("segments", 1500, 1)),
        *along_each_axis("helix_{}_200k", 200 * K, ("helix", 200 * K, None, 100, 0.01)),
        *rods("rod_{}_200k", 200 * K),
        *(
            PointSet(f"rod_{axis}_singles_200k", 200 * K, ("box", 200 * K, axis, 1, 1e-3), ONE_BY_ONE)
            for axis in "xy"
        ),
        PointSet("map_200k", 200 * K, ("placed_cube", 200 * K, 1000, 6e6, 5e5, 0)),
        PointSet("far_clusters_200k", 200 * K, ("shuffled_far_cubes", 200 * K, 2, 1e6, 1)),
        PointSet("far_clusters_in_turn_200k", 200 * K, ("far_cubes", 200 * K, 2, 1e6, 1), batches=2),
        PointSet("scan", 46391, ("text", "examples/data/duck.ply")),
    ),
)

LARGE = Group(
    "large",
    "uniform_1M",
    (
        cube("uniform_1M", M),
        PointSet("gauss_1M", M, ("gauss", M)),
        PointSet("clusters_1M", M, ("clusters", M, 100, 1e-3)),
        PointSet("grid_100", M, ("grid", 100, 0, 1), unique=False),
        *rods("rod_{}_1M", M),
        *along_each_axis("slab_{}_1M", M, ("box", M, None, 1e-3, 1)),
        PointSet("outlier_1M_random", M, ("outlier", M, 1e6, 0)),
        PointSet("outlier_1M_sorted", M, ("outlier", M, 1e6, 1)),
        cube("singles_1M", M, batches=ONE_BY_ONE),
    ),
)

HOSTILE = Group(
    "hostile",
    "uniform_200k",
    (
        cube("uniform_200k", 200 * K),
        PointSet("grid_100_sorted", M, ("sorted_grid", 100, 0, 1), unique=False),
        PointSet(
            "grid_20_sorted_singles", 20**3, ("sorted_grid", 20, 0, 1), ONE_BY_ONE, 401, unique=False
        ),
        PointSet("last_bits_64", 64**3, ("grid", 64, 1, 2.0**-52), unique=False),
        PointSet("far_batches_200k", 200 * K, ("far_cubes", 200 * K, 10, 100, 10), batches=10),
        PointSet("helix_smooth_5k", 5 * K, ("helix", 5 * K, "z", 100, 0)),
        PointSet("moment_1k_singles", K, ("moment", K), ONE_BY_ONE),
        PointSet("segs_3k_singles", 3 * K, ("segments", 1500, 0), ONE_BY_ONE, head=100),
        PointSet("line_apex_100k", 100 * K, ("line_apex", 100 * K)),
        PointSet("duplicates_1M", M, ("duplicates", M, 10 * K)),
        PointSet("equal_1M", M, ("duplicates", M, 1)),
    ),
)


def with_queries(name, order, side, corner):
    return cube(name, M, queries=(order, 200 * K, side, corner, corner, corner))


# The same queries in two orders: uniform in the mesh's cube, and in one of three times its size
# around it, where nearly all lie outside.
QUERIES = Group(
    "queries",
    "queries_random_1M",
    (
        with_queries("queries_random_1M", "placed_cube", 1, 0),
        with_queries("queries_sorted_1M", "placed_cube_on_curve", 1, 0),
        with_queries("queries_around_random_1M", "placed_cube", 3, -1),
        with_queries("queries_around_sorted_1M", "placed_cube_on_curve", 3, -1),
    ),
)

GROUPS = (SCALE, MEDIUM, LARGE, HOSTILE, QUERIES)


def selected_groups(groups, names, largest):
    """The named groups cut down to the named sets (all where none is named) of at most that many
    points. The base of a group stays as long as any set of it does."""
    known = {point_set.name for group in GROUPS for point_set in group.sets}
    unknown = (set(names) - known) | (set(groups) - {group.name for group in GROUPS})
    if unknown:
        raise SystemExit("unknown: " + ", ".join(sorted(unknown)))
    result = []
    done = set()
    for group in GROUPS:
        if groups and group.name not in groups:
            continue
        wanted = [
            s
            for s in group.sets
            if s.points <= largest and (s.name in names and s.name not in done if names else True)
        ]
        done.update(s.name for s in wanted)
        if wanted:
            base = [s for s in group.sets if s.name == group.base and s not in wanted]
            result.append(Group(group.name, group.base, tuple(base + wanted)))
    return result
