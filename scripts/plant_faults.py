"""Plants faults into a copy of the tree, one at a time, and tells which of them the tests notice.

Called by plant-faults.sh, whose comment describes the list of faults.
"""

import argparse
import concurrent.futures
import fnmatch
import hashlib
import os
import pathlib
import re
import resource
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
COPIED = ["CMakeLists.txt", "cmake", "docs", "dt3Library", "tests", "tools", "examples"]
CONFIGURE = ["-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_CXX_FLAGS_RELEASE=-O1",
             "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld", "-DVARN3D_BUILD_BENCH=OFF",
             "-DVARN3D_BUILD_EXAMPLES=OFF", "-DVARN3D_INSTALL=OFF"]

# A test that a fault can name: the sources refuse it.
COMPILER = "compiler"
# The one that is no GoogleTest.
HOST = "fast_math_host"


class Fault:
    """What is replaced by what, and the tests that are likely to notice."""

    def __init__(self, name, file, tests):
        self.name, self.file, self.tests = name, file, tests
        self.old, self.new, self.reason = [], [], []

    def pattern(self):
        """The old text, however it is broken into lines and indented."""
        words = " ".join(self.old).split()
        return re.compile(r"\s+".join(re.escape(word) for word in words))

    def digest(self):
        return hashlib.sha1(repr((self.file, self.old, self.new)).encode()).hexdigest()[:10]

    def plant(self, text):
        """The text with the fault, or None where the old text isn't there exactly once."""
        found = list(self.pattern().finditer(text))
        if len(found) != 1:
            return None
        return text[:found[0].start()] + "\n".join(self.new) + text[found[0].end():]


def read_faults(path):
    faults = []
    file, tests = None, []
    for number, line in enumerate(path.read_text().splitlines(), 1):
        sign, _, rest = line.partition(" ")
        if not line or sign == "#":
            continue
        if sign == "file":
            file, tests = rest.strip(), []
        elif sign == "tests":
            tests = rest.split()
        elif not rest:
            faults.append(Fault(sign, file, tests))
        elif sign in "-+=" and faults:
            {"-": faults[-1].old, "+": faults[-1].new, "=": faults[-1].reason}[sign].append(rest)
        else:
            sys.exit(f"{path}:{number}: what is this?")
    names = [fault.name for fault in faults]
    repeated = {name for name in names if names.count(name) > 1}
    if repeated:
        sys.exit(f"{path}: names that stand twice: {', '.join(sorted(repeated))}")
    return faults


class Workshop:
    """A copy of the tree with its build, which comes back to the faultless state."""

    def __init__(self, directory, jobs):
        self.tree = directory / "tree"
        self.build_dir = directory / "build"
        self.clean = directory / "clean"
        self.jobs = jobs

    def prepare(self, tests):
        """Brings tree and build up to date with the working copy, and remembers them."""
        if self.clean.exists():
            self.restore()
        wanted = set()
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others",
                                 "--exclude-standard", *COPIED],
                                cwd=ROOT, stdout=subprocess.PIPE, check=True).stdout.decode()
        for name in filter(None, listed.split("\0")):
            source, copy = ROOT / name, self.tree / name
            if not source.is_file():
                continue
            wanted.add(copy)
            if not copy.exists() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, copy)
        for copy in self.tree.rglob("*"):
            if copy.is_file() and copy not in wanted:
                copy.unlink()
        subprocess.run(["cmake", "-S", self.tree, "-B", self.build_dir, *CONFIGURE], check=True,
                       stdout=subprocess.DEVNULL)
        if not self.build(tests, quiet=False):
            sys.exit("The tree doesn't build without faults.")
        half_made = self.clean.with_name("clean.new")  # an interrupted copy must not count
        for directory in (half_made, self.clean):
            shutil.rmtree(directory, ignore_errors=True)
        for part in (self.tree, self.build_dir):
            shutil.copytree(part, half_made / part.name, symlinks=True)
        half_made.rename(self.clean)

    def restore(self):
        """Takes back what has changed, times included, so that nothing is built for it."""
        for part in (self.tree, self.build_dir):
            clean = self.clean / part.name
            present = {path.relative_to(part) for path in part.rglob("*") if not path.is_dir()}
            for path in clean.rglob("*"):
                name = path.relative_to(clean)
                if path.is_dir():
                    continue
                if name not in present or stamp(part / name) != stamp(path):
                    (part / name).parent.mkdir(parents=True, exist_ok=True)
                    shutil.copy2(path, part / name, follow_symlinks=False)
                present.discard(name)
            for name in present:
                (part / name).unlink()

    def tests(self):
        """All test programs, sessions of the program as program.NAME."""
        names = [path.stem for path in sorted((self.tree / "tests").glob("*_*.cpp"))]
        sessions = sorted((self.tree / "tests/program").glob("*.session"))
        return names + [HOST] + ["program." + path.stem for path in sessions]

    def build(self, tests, quiet=True):
        targets = {"varn3d" if test.startswith("program.") else test
                   for test in tests or self.tests() if test != COMPILER}
        result = subprocess.run(["ninja", f"-j{self.jobs}", "-C", self.build_dir, *sorted(targets)],
                                stdout=subprocess.DEVNULL if quiet else None,
                                stderr=subprocess.STDOUT, check=False)
        return result.returncode == 0

    def fails(self, test):
        """Whether the test fails or uses up its limits: of processor time, whatever else runs."""
        kind, _, session = test.partition(".")
        if test == COMPILER:
            return False
        if kind == "program":
            command = ["sh", self.tree / "tests/program/run.sh", self.build_dir / "tools/varn3d",
                       self.tree / f"tests/program/{session}.session"]
        else:
            command = [self.build_dir / "tests" / test, "--gtest_brief=1", "--gtest_fail_fast"]
            if test == HOST:
                command = [self.build_dir / "tests/digests" / test]

        def limit():
            resource.setrlimit(resource.RLIMIT_CPU, (20, 20))
            resource.setrlimit(resource.RLIMIT_AS, (6 << 30, 6 << 30))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        try:
            return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                  stdin=subprocess.DEVNULL, cwd=self.build_dir / "tests",
                                  preexec_fn=limit, timeout=900, check=False).returncode != 0
        except subprocess.TimeoutExpired:
            return True

    def first_failing(self, tests):
        """A test that fails, the likeliest first; None if all pass."""
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            running = {pool.submit(self.fails, test): test for test in tests}
            for done in concurrent.futures.as_completed(running):
                if done.result():
                    for other in running:
                        other.cancel()
                    return running[done]
        return None

    def try_fault(self, fault, quick):
        """Plants the fault; what becomes of it, and which test noticed."""
        path = self.tree / fault.file
        planted = fault.plant(path.read_text()) if path.exists() else None
        if planted is None:
            return "does not apply", ""
        path.write_text(planted)
        try:
            rest = [] if quick else [test for test in self.tests() if test not in fault.tests]
            for tests in filter(None, [[test] for test in fault.tests] + [rest]):
                if not self.build(tests):
                    return ("killed", COMPILER) if COMPILER in tests else ("does not compile", "")
                test = self.first_failing(tests)
                if test:
                    return "killed", test
            return ("survives first tests" if quick else "survives"), ""
        finally:
            self.restore()


def stamp(path):
    status = path.lstat()
    return status.st_mtime_ns, status.st_size


def read_results(path):
    """The last result of each fault, by its name and what it changes."""
    results = {}
    for line in path.read_text().splitlines() if path.exists() else []:
        name, digest, *outcome = line.split("\t")
        results[name, digest] = outcome
    return results


def report(faults, results):
    """Prints the totals and what needs attention; whether all is as the list says."""
    verdicts = {fault.name: results.get((fault.name, fault.digest()), ["not tried"])[0]
                for fault in faults}
    for verdict in sorted(set(verdicts.values())):
        print(f"{verdict}: {sum(v == verdict for v in verdicts.values())}")
    good = True
    for fault in faults:
        verdict = verdicts[fault.name]
        expected = "survives" if fault.reason else "killed"
        if verdict != expected and not verdict.startswith(expected):
            good = False
            print(f"  {fault.name} ({fault.file}): {verdict}")
        elif fault.reason:
            print(f"  {fault.name} ({fault.file}): survives: {' '.join(fault.reason)}")
    return good


def main():
    parser = argparse.ArgumentParser(prog="plant-faults.sh", description=__doc__)
    parser.add_argument("names", nargs="*", help="only the faults with these names (* and ?)")
    parser.add_argument("--list", type=pathlib.Path, default=ROOT / "tests/faults.txt")
    parser.add_argument("--dir", type=pathlib.Path, default=ROOT / "build/plant-faults",
                        help="where the copy is built: some 500 MB, best in memory")
    parser.add_argument("--resume", action="store_true",
                        help="skip what has a result already, and the run without a fault")
    parser.add_argument("--quick", action="store_true",
                        help="run only the tests that a fault names")
    parser.add_argument("--check", action="store_true",
                        help="only tell which faults don't apply to the sources")
    parser.add_argument("--jobs", type=int, default=2)
    options = parser.parse_args()

    faults = [fault for fault in read_faults(options.list) if not options.names or
              any(fnmatch.fnmatch(fault.name, name) for name in options.names)]
    lost = [fault for fault in faults if not (ROOT / fault.file).is_file() or
            fault.plant((ROOT / fault.file).read_text()) is None]
    for fault in lost:
        print(f"does not apply: {fault.name} ({fault.file})")
    if options.check:
        print(f"{len(faults)} faults, {len(lost)} do not apply")
        sys.exit(1 if lost else 0)

    options.dir.mkdir(parents=True, exist_ok=True)
    workshop = Workshop(options.dir.resolve(), options.jobs)
    named = {test for fault in faults for test in fault.tests}
    workshop.prepare(named if options.quick else [])
    if not options.resume:
        failing = workshop.first_failing(named)
        if failing:
            sys.exit(f"{failing} fails without any fault.")
    results_path = options.dir / "results.txt"
    known = read_results(results_path) if options.resume else {}
    for fault in faults:
        outcome = known.get((fault.name, fault.digest()))
        if outcome and (options.quick or not outcome[0].startswith("survives first")):
            continue
        verdict, test = workshop.try_fault(fault, options.quick)
        print(f"{verdict:10} {fault.name}{' by ' + test if test else ''}", flush=True)
        with results_path.open("a") as results:
            results.write("\t".join([fault.name, fault.digest(), verdict, test]) + "\n")
    sys.exit(0 if report(faults, read_results(results_path)) else 1)


if __name__ == "__main__":
    main()
