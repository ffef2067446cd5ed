"""Tables in markdown from the results of a run."""

import re
import statistics

from measure import QUERY_PASSES

BEGIN = "<!-- figures of bench/run: begin -->"
END = "<!-- figures of bench/run: end -->"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|---|" + "--:|" * (len(head) - 1)]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines)


def number(value, digits=2, factor=1.0):
    return "–" if value is None else f"{value * factor:,.{digits}f}"


def median_or_none(values):
    return statistics.median(values) if values else None


def per_point(result, engine, key, factor):
    value = result.median(engine, key)
    return None if value is None else value * factor / result.point_set.points


def all_results(groups, with_queries=False):
    """Each set once: a base that recurs in later groups is shown where it comes first."""
    seen = {}
    for _, results in groups:
        for name, result in results.items():
            if (result.point_set.queries is not None) == with_queries:
                seen.setdefault(name, result)
    return seen.values()


def mesh_size(result, ours):
    counts = {r["tetrahedra"] for r in result.valid_reports(ours)}
    return " / ".join(f"{count:,}" for count in sorted(counts)) or "–"


def against_peers(groups, ours, peers):
    rows = []
    for result in all_results(groups):
        row = [result.point_set.name, f"{result.point_set.points:,}", mesh_size(result, ours)]
        row.append(number(per_point(result, ours, "seconds", 1e6)))
        row[-1] = "failed" if ours in result.faults else row[-1]
        for peer in peers:
            ratio = number(median_or_none(result.ratios(peer, ours)))
            row.append("failed" if peer in result.faults else ratio)
        for engine in [ours, *peers]:
            row.append(number(per_point(result, engine, "peakBytes", 1.0), 0))
        rows.append(row)
    head = ["set", "points", "tetrahedra", "µs a point", *(f"× {peer}" for peer in peers)]
    return table(head + [f"B a point {engine}" for engine in [ours, *peers]], rows)


def faults(groups):
    lines = []
    for result in [*all_results(groups), *all_results(groups, with_queries=True)]:
        for engine, why in sorted(result.faults.items()):
            lines.append(f"- {result.point_set.name}, {engine}: {why}")
    return "\n".join(lines)


def against_base(groups, ours):
    """Costs relative to the group's base, both within each round."""
    rows = []
    for group, results in groups:
        base = results[group.base]
        for name, result in results.items():
            if name == group.base or result.point_set.queries is not None:
                continue
            points = base.point_set.points / result.point_set.points
            costs = [
                points * a / b for a, b in zip(result.seconds(ours), base.seconds(ours)) if b > 0
            ]
            cost = median_or_none(costs)
            size = per_point(result, ours, "tetrahedra", 1.0)
            base_size = per_point(base, ours, "tetrahedra", 1.0)
            a_tetrahedron = cost * base_size / size if cost is not None and size else None
            rows.append(
                [name, group.base, number(per_point(result, ours, "seconds", 1e6)), number(size),
                 number(cost), number(a_tetrahedron)]
            )
    head = ["set", "base", "µs a point", "tetrahedra a point", "× base a point",
            "× base a tetrahedron"]
    return table(head, rows)


def listing(groups, engines):
    rows = []
    for result in all_results(groups):
        for engine in engines:
            batch = result.seconds(engine)
            if not batch or result.median(engine, "listTetrahedra") is None:
                continue
            lists = [r["listTetrahedra"] for r in result.valid_reports(engine)]
            share = statistics.median(a / b for a, b in zip(lists, batch))
            rows.append(
                [result.point_set.name, engine,
                 number(result.median(engine, "listTetrahedra"), 2, 1e3),
                 number(share, 2, 100.0) + " %",
                 number(result.median(engine, "listVertices"), 2, 1e3)]
            )
    head = ["set", "engine", "all tetrahedra, ms", "of the insertion", "all vertices, ms"]
    return table(head, rows)


def query_microseconds(result, engine, name):
    value = result.median(engine, name)
    return None if value is None else value * 1e6 / result.point_set.queries[1]


def fastest(result, engine, names):
    """For each round the time by the engine's fastest of these ways."""
    return [min(r[name] for name in names if r[name] >= 0) for r in result.valid_reports(engine)]


def queries_against_peers(groups, ours, peers):
    rows = []
    for result in all_results(groups, with_queries=True):
        row = [result.point_set.name]
        for names in (("locate", "locateOn"), ("nearest", "nearestOn")):
            times = fastest(result, ours, names)
            row.append(number(median_or_none(times), 2, 1e6 / result.point_set.queries[1]))
            for peer in peers:
                ratios = [a / b for a, b in zip(fastest(result, peer, names), times)]
                row.append(number(median_or_none(ratios)))
        rows.append(row + [number(per_point(result, ours, "indexedMesh", 1e6))])
    ratios = [f"× {peer}" for peer in peers]
    head = ["set", "place, µs", *ratios, "nearest vertex, µs", *ratios, "indexed mesh, µs a point"]
    return table(head, rows)


def queries_each_way(groups, engines):
    rows = []
    for result in all_results(groups, with_queries=True):
        for engine in engines:
            times = [query_microseconds(result, engine, name) for name in QUERY_PASSES]
            rows.append([result.point_set.name, engine, *map(number, times),
                         number(result.median(engine, "locateSum"), 0),
                         number(result.median(engine, "nearestOnSum"), 4)])
    head = ["set", "engine", "place, µs", "from the last, µs", "nearest vertex, µs",
            "from the last, µs", "in the hull", "squared distances"]
    return table(head, rows)


PHASES = ("Store", "Kernel", "Walk", "Conflict", "Creation", "Hull")
STAGES = ("filter", "lattice", "small integers", "larger integers")


def stage_shares(counts):
    """The last two stages, integers of medium and of any size, count as one."""
    total = sum(counts)
    shares = [*counts[:3], sum(counts[3:])]
    return [number(share / total, 2, 100.0) if total else "–" for share in shares]


def profiles(groups):
    phase_rows, stage_rows = [], []
    for result in all_results(groups):
        work = result.profile
        if not work:
            continue
        points = max(work["insertions"], 1)
        seconds = [work["seconds" + phase] for phase in PHASES]
        other = max(work["secondsTotal"] - sum(seconds), 0.0)
        phase_rows.append(
            [result.point_set.name]
            + [number(s / work["secondsTotal"], 0, 100.0) for s in [*seconds, other]]
            + [number(work[key] / points, 1)
               for key in ("tetsPassed", "openLooks", "facetTests", "sphereTests", "doomed",
                           "created")]
            + [number(work["longestWalk"], 0), number(work["hullInsertions"] / points, 2, 100.0)]
        )
        beyond = work["sphereTestsBeyondBound"] / max(work["sphereTests"], 1)
        stage_rows.append(
            [result.point_set.name, number(beyond, 2, 100.0)]
            + stage_shares(work["sphereStages"])
            + stage_shares(work["orientationStages"])
        )
    phase_head = ["set", *(f"{phase.lower()} %" for phase in PHASES), "other %",
                  "tetrahedra passed", "open looks", "facets walked", "sphere tests", "doomed",
                  "created", "longest walk", "outside hull %"]
    stage_head = ["set", "sphere tests past the first bound %",
                  *(f"sphere {stage} %" for stage in STAGES),
                  *(f"orientation {stage} %" for stage in STAGES)]
    return table(phase_head, phase_rows), table(stage_head, stage_rows)


def markdown(machine, revision, rounds, groups, ours, peers, brief=False):
    parts = [
        f"Revision {revision}, {machine['date']}, {machine['cpu']}, {machine['compiler']}; "
        f"rounds: {rounds}; one thread, pinned to one core. A ratio × above 1 says how many times "
        f"faster than that engine {ours} is: the median of the ratios within the rounds. Times a "
        "point are medians of the triangulation alone; memory is the peak above the input. "
        "Engines whose mesh failed the check, or that took too long, show no time; those more "
        "than eight times slower ran once.",
    ]
    if all_results(groups):
        parts += ["### Against the peers", against_peers(groups, ours, peers)]
    parts.append(faults(groups))
    cgals = [peer for peer in peers if peer.startswith("cgal")]
    if all_results(groups, with_queries=True):
        parts += ["### Queries", queries_against_peers(groups, ours, cgals)]
    if not brief:
        parts += further_tables(groups, ours, cgals)
    return "\n\n".join(part for part in parts if part) + "\n"


def further_tables(groups, ours, cgals):
    parts = []
    if all_results(groups, with_queries=True):
        parts += [
            "Each query on its own, or from where the last one ended; "
            f"{ours}'s own ways are `Varn_3D::locate` and `PointLocator`.",
            queries_each_way(groups, [ours, *cgals]),
        ]
    if all_results(groups):
        parts += [
            "### Against uniform points",
            against_base(groups, ours),
            "### Listing",
            listing(groups, [ours, *cgals]),
        ]
    if any(result.profile for result in all_results(groups)):
        phases, stages = profiles(groups)
        parts += [
            "### Where the time goes",
            "From the counting variant of the library, which runs slower. The batch kernel is timed "
            "as a whole; tetrahedra passed and open looks are counts of its own. Walk, conflict, "
            "creation and hull, facets walked and sphere tests are those of insertions into the "
            "records. All counts are counts an insertion.",
            phases,
            "Which stage decides, among the calls that reach the predicates themselves (most sphere "
            "tests end before, at a cached sphere of the kernel or at the first bound of an "
            "insertion into the records):",
            stages,
        ]
    return parts


def replace_figures(path, text):
    page = path.read_text()
    pattern = re.compile(re.escape(BEGIN) + ".*" + re.escape(END), re.DOTALL)
    if not pattern.search(page):
        raise SystemExit(f"{path} has no line {BEGIN}")
    path.write_text(pattern.sub(lambda _: f"{BEGIN}\n\n{text}\n{END}", page))
