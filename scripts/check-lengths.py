#!/usr/bin/env python3
"""Fails on functions of more than 50 lines in dt3Library/, tools/ and python/, braces included.

Relies on clang-format: a body ends with the first closing brace that stands as far left as the line
with its opening one, or as the first line of a signature that takes several.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LONGEST = 50
NO_FUNCTION = re.compile(r"\s*(template|namespace|class|struct|union|enum|extern|typedef)\b|.*= \{$")


def bodies(lines):
    """The lines between which the bodies stand, those of inner blocks too."""
    for first, line in enumerate(lines):
        if not line.endswith(" {") or NO_FUNCTION.match(line):
            continue
        for last in range(first + 1, len(lines)):
            if re.match(r"\s*\}", lines[last]) and indent(lines[last]) <= indent(line):
                yield first, last
                break


def indent(line):
    return len(line) - len(line.lstrip())


def main():
    lengths = []
    for directory in ("dt3Library", "tools", "python"):
        for file in sorted((ROOT / directory).rglob("*")):
            if file.suffix in (".h", ".cpp"):
                lines = file.read_text(encoding="utf-8").splitlines()
                lengths += [(last - first + 1, f"{file.relative_to(ROOT)}:{first + 1}")
                            for first, last in bodies(lines)]
    lengths.sort(reverse=True)
    for length, place in lengths:
        if length > LONGEST:
            print(f"{place}: {length} lines")
    if lengths[0][0] > LONGEST:
        sys.exit(f"No function is to have more than {LONGEST} lines.")
    print(f"The longest function has {lengths[0][0]} lines ({lengths[0][1]}).")


main()
