#!/usr/bin/python3
"""python_compare.py [--points N] [--rounds R]: varn3d beside scipy, as a table in Markdown.

Each measurement runs in a process of its own, the packages in turn. Times are the process's own CPU
time, medians over the rounds; memory is the peak above that with the points. Needs Linux.
"""

import argparse
import importlib
import json
import statistics
import subprocess
import sys
import time
from fractions import Fraction
from pathlib import Path

import numpy as np

PACKAGES = "varn3d", "scipy.spatial"
QUERIES = 2000


def uniform(n):
    return np.random.default_rng(1).random((n, 3))


def grid(n):
    side = round(n ** (1 / 3))
    return 1.0 * np.indices((side, side, side)).reshape(3, -1).T


def sphere(n):
    directions = np.random.default_rng(1).normal(size=(n, 3))
    return directions / np.linalg.norm(directions, axis=1)[:, None]


SETS = {
    "uniform": uniform,
    "grid": grid,
    "grid, step 0.1": lambda n: 0.1 * grid(n),
    "sphere": sphere,
    "uniform, 1e6 from the origin": lambda n: 1e6 + uniform(n),
    "the same, 1e-6 wide": lambda n: 1e6 + 1e-6 * uniform(n),
}


def forget_peak():
    Path("/proc/self/clear_refs").write_text("5")


def peak():
    """The most memory since the last forgetting, in bytes."""
    for line in Path("/proc/self/status").read_text().splitlines():
        if line.startswith("VmHWM:"):
            return 1024 * int(line.split()[1])


def measure(package, name, n):
    """What one process reports: seconds, bytes, and what became of the points."""
    Delaunay = importlib.import_module(package).Delaunay
    points = SETS[name](n)
    low, high = points.min(axis=0), points.max(axis=0)
    xi = low + (high - low) * np.random.default_rng(2).random((QUERIES, 3))
    report = {"points": len(points)}
    forget_peak()
    before = peak()
    start = time.process_time()
    try:
        mesh = Delaunay(points)
        simplices, neighbors = mesh.simplices, mesh.neighbors
    except Exception as error:
        return {**report, "outcome": type(error).__name__}
    report["mesh"] = (time.process_time() - start) / len(points)
    report["memory"] = (peak() - before) / len(points)
    mesh.find_simplex(xi[:1])  # The first query prepares for the others.
    start = time.process_time()
    mesh.find_simplex(xi)
    report["find"] = (time.process_time() - start) / len(xi)
    report["outcome"] = outcome(points, simplices)
    return report


def outcome(points, simplices):
    """What is wrong with a mesh; exact where doubles can't tell."""
    corners = points[simplices]
    rows = np.moveaxis(corners[:, 1:] - corners[:, :1], 1, 0)
    volumes = np.abs(np.einsum("ij,ij->i", rows[0], np.cross(rows[1], rows[2])))
    doubtful = np.flatnonzero(volumes < 1e-12 * np.ptp(points, axis=0).max() ** 3)

    def is_flat(tet):
        a, b, c, d = ([Fraction(x) for x in p] for p in points[simplices[tet]].tolist())
        u, v, w = ([y - x for x, y in zip(a, p)] for p in (b, c, d))
        return 0 == sum(u[i] * (v[i - 2] * w[i - 1] - v[i - 1] * w[i - 2]) for i in range(3))

    flat = sum(is_flat(tet) for tet in doubtful)
    missing = len(np.unique(points, axis=0)) - len(np.unique(simplices))
    faults = [f"{flat:,} flat tetrahedra"] * (flat > 0) + [f"{missing:,} points left out"] * (missing > 0)
    return ", ".join(faults) or "valid"


def run(package, name, n):
    command = [sys.executable, __file__, "--measure", package, name, str(n)]
    result = subprocess.run(command, capture_output=True, text=True, timeout=1800)
    if result.returncode != 0:
        return {"outcome": f"exit code {result.returncode}: {result.stderr[-300:]}"}
    return json.loads(result.stdout.splitlines()[-1])


def cells(reports, key, scale, form):
    """One median a package."""
    for package in PACKAGES:
        values = [report[key] for report in reports[package] if key in report]
        yield form.format(scale * statistics.median(values)) if values else "–"


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--points", type=int, default=100000)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--measure", nargs=3, help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.measure:
        package, name, n = options.measure
        print(json.dumps(measure(package, name, int(n))))
        return
    print("| points | mesh, µs a point | scipy | `find_simplex`, µs | scipy | memory, B a point | scipy "
          "| outcome | scipy |\n|---|--:|--:|--:|--:|--:|--:|---|---|")
    for name in SETS:
        reports = {package: [] for package in PACKAGES}
        for _ in range(options.rounds):
            for package in PACKAGES:
                reports[package].append(run(package, name, options.points))
        row = [name]
        row += cells(reports, "mesh", 1e6, "{:.1f}")
        row += cells(reports, "find", 1e6, "{:.1f}")
        row += cells(reports, "memory", 1, "{:,.0f}")
        row += (reports[package][0]["outcome"] for package in PACKAGES)
        print("| " + " | ".join(row) + " |", flush=True)


if __name__ == "__main__":
    main()
