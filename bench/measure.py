"""Runs the drivers: one fresh process a measurement, all on one core, results as JSON."""

import json
import math
import os
import platform
import statistics
import subprocess
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def git_revision():
    described = subprocess.run(
        ["git", "-C", ROOT, "describe", "--always", "--dirty"], capture_output=True, text=True
    )
    return described.stdout.strip() or "unknown"


def machine():
    """What a reader needs to judge the figures."""
    cpu = platform.processor()
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            cpu = line.split(":", 1)[1].strip()
            break
    compiler = subprocess.run(["c++", "--version"], capture_output=True, text=True).stdout
    return {
        "cpu": cpu,
        "cores": os.cpu_count(),
        "compiler": compiler.splitlines()[0] if compiler else "unknown",
        "date": time.strftime("%Y-%m-%d"),
    }


def pin_to_core(core):
    """This process sleeps while a driver runs, and its children inherit its core."""
    os.sched_setaffinity(0, {core if core is not None else max(os.sched_getaffinity(0))})


class PointFiles:
    """The sets' files, each generated once."""

    def __init__(self, generator, directory):
        self.generator = generator
        self.directory = Path(directory)
        self.directory.mkdir(parents=True, exist_ok=True)

    def path(self, shape, seed):
        words = [str(part) for part in shape]
        name = "_".join(words).replace("/", "_") + f"_{seed}"
        path = self.directory / (name + ".points")
        # A changed generator makes the files anew.
        if not path.exists() or path.stat().st_mtime < Path(self.generator).stat().st_mtime:
            unfinished = path.with_suffix(".part")
            command = [self.generator, words[0], unfinished, str(seed), *words[1:]]
            subprocess.run(command, check=True, cwd=ROOT)
            unfinished.rename(path)
        return path


class Engine:
    def __init__(self, name, driver, timeout, clock="wall", most_points=None, batch_only=False):
        self.name = name
        self.driver = Path(driver)
        self.timeout = timeout
        self.clock = clock
        self.most_points = most_points
        self.batch_only = batch_only

    def takes(self, point_set):
        if self.most_points is not None and point_set.points > self.most_points:
            return False
        return not self.batch_only or (point_set.batches == 1 and point_set.queries is None)

    def run(self, point_set, files, check=False):
        """The driver's report; one without a mesh to trust has "valid": False and a "fault"."""
        command = [self.driver, files.path(point_set.shape, point_set.seed)]
        if point_set.batches == 0:
            command += ["--singles-after", str(point_set.head)]
        elif point_set.batches > 1:
            command += ["--batches", str(point_set.batches)]
        if point_set.queries is not None:
            command += ["--queries", files.path(point_set.queries, point_set.seed + 1)]
        if check:
            command.append("--check")
        try:
            done = subprocess.run(command, capture_output=True, text=True, timeout=self.timeout)
        except subprocess.TimeoutExpired:
            return {"valid": False, "fault": f"more than {self.timeout:g} s"}
        try:
            report = json.loads(done.stdout)
            if self.clock == "cpu":
                report["seconds"] = report["cpuSeconds"]
            return report
        except json.JSONDecodeError:
            last = (done.stdout + done.stderr).strip().splitlines()[-1:]
            return {"valid": False, "fault": f"exit code {done.returncode}: {' '.join(last)}"[:200]}


# The drivers' passes over the queries; under each name the time, and with "Sum" what it found.
QUERY_PASSES = ("locate", "locateOn", "nearest", "nearestOn")


def disagreement(report, reference, point_set):
    """Why a mesh cannot be the reference's; None if it can."""
    if report["vertices"] != reference["vertices"]:
        return f"{report['vertices']} vertices, not {reference['vertices']}"
    if abs(report["volume"] - reference["volume"]) > 1e-9 * abs(reference["volume"]):
        return f"volume {report['volume']:.12g}, not {reference['volume']:.12g}"
    if point_set.unique and report["tetrahedra"] != reference["tetrahedra"]:
        return f"{report['tetrahedra']} tetrahedra, not {reference['tetrahedra']}"
    for name in QUERY_PASSES:
        found, expected = report[name + "Sum"], reference[name + "Sum"]
        answered = report[name] >= 0 and reference[name] >= 0
        if answered and abs(found - expected) > 1e-9 * abs(expected):
            return f"{name}: a sum of {found:.12g}, not {expected:.12g}"
    return None


class SetResult:
    """All runs of one set: for each engine a report a round, None where it did not run."""

    def __init__(self, point_set):
        self.point_set = point_set
        self.reports = {}
        self.faults = {}
        self.profile = None

    def add(self, engine_name, report):
        self.reports.setdefault(engine_name, []).append(report)
        if report is not None and not report["valid"]:
            self.faults.setdefault(engine_name, report["fault"])

    def compare_meshes(self, reference_names):
        """Marks every engine whose meshes differ from those of the first reference that has one."""
        references = [name for name in reference_names if self.valid_reports(name)]
        for name in self.reports:
            for report in self.valid_reports(name):
                for reference in references[:1]:
                    why = disagreement(report, self.valid_reports(reference)[0], self.point_set)
                    if why:
                        self.faults.setdefault(name, why)

    def valid_reports(self, engine_name):
        if engine_name in self.faults:
            return []
        return [r for r in self.reports.get(engine_name, []) if r is not None]

    def median(self, engine_name, key):
        values = [r.get(key, -1) for r in self.valid_reports(engine_name)]
        return statistics.median(values) if values and values[0] >= 0 else None

    def seconds(self, engine_name):
        """A time for each round; empty if any run failed."""
        return [r["seconds"] for r in self.valid_reports(engine_name)]

    def ratios(self, numerator, denominator):
        """Times of one engine over the other's, within each round."""
        return [a / b for a, b in zip(self.seconds(numerator), self.seconds(denominator))]

    def first_ratio(self, reference, engine_name):
        """The engine's first time over the reference's; infinite if either has none."""
        ratios = self.ratios(engine_name, reference)
        return ratios[0] if ratios else math.inf

    def as_json(self):
        engines = {}
        for name in self.reports:
            reports = self.valid_reports(name)
            if not reports:
                engines[name] = {"fault": self.faults.get(name, "not run")}
                continue
            engines[name] = {
                key: reports[0][key]
                for key in ("tetrahedra", "vertices", "volume", *(p + "Sum" for p in QUERY_PASSES))
            }
            for key in ("seconds", "listTetrahedra", "listVertices", "indexedMesh", *QUERY_PASSES,
                        "peakBytes"):
                engines[name][key] = [r[key] for r in reports]
        return {
            "points": self.point_set.points,
            "unique": self.point_set.unique,
            "engines": engines,
            "profile": self.profile,
        }

    @classmethod
    def from_json(cls, point_set, raw):
        """The result that as_json was made of, as far as the tables need it."""
        result = cls(point_set)
        result.profile = raw["profile"]
        for name, figures in raw["engines"].items():
            result.reports[name] = []
            if "fault" in figures:
                result.faults[name] = figures["fault"]
                continue
            for number in range(len(figures["seconds"])):
                result.reports[name].append({
                    key: value[number] if isinstance(value, list) else value
                    for key, value in figures.items()})
        return result


# An engine so many times slower than ours on a set is measured once there: its ratio is in no doubt.
SLOW = 8.0


def run_rounds(point_sets, engines, files, rounds_of, check_up_to, say):
    """Every round runs every engine on every set that has so many rounds; the engines' order turns
    from round to round. An engine that failed on a set, or that is far behind the first engine, is
    not run on it again. Returns the results by set name."""
    results = {s.name: SetResult(s) for s in point_sets}
    for point_set in point_sets:
        files.path(point_set.shape, point_set.seed)
    for number in range(max(map(rounds_of, point_sets))):
        turn = number % len(engines)
        for point_set in point_sets:
            if number >= rounds_of(point_set):
                continue
            result = results[point_set.name]
            for engine in engines[turn:] + engines[:turn]:
                if not engine.takes(point_set) or engine.name in result.faults:
                    continue
                if number > 0 and result.first_ratio(engines[0].name, engine.name) > SLOW:
                    continue
                check = number == 0 and point_set.points <= check_up_to
                report = engine.run(point_set, files, check)
                result.add(engine.name, report)
                outcome = f"{report['seconds']:.4f} s" if report["valid"] else report["fault"]
                say(f"round {number + 1} {point_set.name:28} {engine.name:12} {outcome}")
    return results
