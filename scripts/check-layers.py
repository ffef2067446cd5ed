#!/usr/bin/env python3
"""Checks the includes of dt3Library/ against the table of layers in docs/architecture.md.

The table's rows run from the top layer to the bottom. A row names its files, as folders ("store/") or
as stems ("Dt3" for Dt3.h and Dt3.cpp; a stem counts more than its folder), and the layers that they
may include besides their own. Fails on an include that the table does not allow, on a table whose
rows do not run downward or that leaves out a file, and on headers that include each other in a circle.

check-layers.py [ROOT]: the root of the source tree, by default the one of this script.
"""

import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*["<](dt3Library/[^">]+)[">]', re.MULTILINE)
NAMES = re.compile(r"`([^`]+)`")


class Layer:
    def __init__(self, row, files, allowed):
        self.row = row
        self.files = files
        self.allowed = allowed


def read_table(document):
    """The layers by name, from the top down."""
    section = document.read_text().split("\n## Layers\n", 1)[1].split("\n## ", 1)[0]
    table = section[section.index("\n|"):].strip().split("\n\n", 1)[0]
    rows = [[cell.strip() for cell in line.strip("|").split("|")] for line in table.splitlines()]
    header, body = rows[0], rows[2:]
    if header[:3] != ["layer", "files", "may include"]:
        sys.exit(f"{document}: the table of layers has other columns than expected: {header}")
    return {cells[0]: Layer(place, NAMES.findall(cells[1]),
                            [] if cells[2] == "none" else cells[2].split(", "))
            for place, cells in enumerate(body)}


def faults_of_table(layers, paths):
    for name, layer in layers.items():
        for lower in layer.allowed:
            if lower not in layers:
                yield f"the layer {name} may include {lower}, which is no layer"
            elif layers[lower].row <= layer.row:
                yield f"the layer {name} may include {lower}, which doesn't stand below it"
        for entry in layer.files:
            if not any(matches(entry, path) for path in paths):
                yield f"the layer {name} has {entry}, which is no file or folder"


def matches(entry, path):
    return path.startswith(entry) if entry.endswith("/") else path.rsplit(".", 1)[0] == entry


def layer_of(layers, path):
    """The layers that claim a file: those that name it, or else those that name its folder."""
    claims = [(entry.endswith("/"), name) for name, layer in layers.items()
              for entry in layer.files if matches(entry, path)]
    by_stem = [name for is_folder, name in claims if not is_folder]
    return by_stem or [name for _, name in claims]


def faults_of_includes(layers, includes):
    home = {}
    for path in includes:
        claims = layer_of(layers, path)
        if len(claims) != 1:
            yield f"{path} stands in {len(claims)} layers: {', '.join(claims) or 'none'}"
        home[path] = claims[0] if claims else None
    for path, targets in includes.items():
        for target in targets:
            if target not in home:
                yield f"{path} includes {target}, which isn't there"
            elif home[path] and home[target] and home[target] != home[path] \
                    and home[target] not in layers[home[path]].allowed:
                yield (f"{path} ({home[path]}) includes {target} ({home[target]}), "
                       "which the table does not allow")


def faults_of_circles(includes):
    finished = set()

    def visit(path, chain):
        if path in chain:
            yield "a circle of includes: " + " -> ".join(chain[chain.index(path):] + [path])
        elif path not in finished:
            for target in includes.get(path, []):
                yield from visit(target, chain + [path])
            finished.add(path)

    for path in includes:
        yield from visit(path, [])


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else __file__).resolve()
    if len(sys.argv) <= 1:
        root = root.parent.parent
    library = root / "dt3Library"
    includes = {}
    for file in sorted(library.rglob("*")):
        if file.suffix in (".h", ".cpp"):
            path = file.relative_to(library).as_posix()
            includes[path] = [target.removeprefix("dt3Library/")
                              for target in INCLUDE.findall(file.read_text())]
    layers = read_table(root / "docs" / "architecture.md")
    faults = [*faults_of_table(layers, includes), *faults_of_includes(layers, includes),
              *faults_of_circles(includes)]
    for fault in faults:
        print(fault)
    if faults:
        sys.exit(f"{len(faults)} faults in the layers of dt3Library.")
    print(f"{sum(map(len, includes.values()))} includes of {len(includes)} files keep to the "
          f"{len(layers)} layers.")


main()
