#!/usr/bin/env python3
"""Prints the share of the code that is tests, and fails above a third.

Counted are the C++ lines that are neither blank nor comment: the tests' are those of tests/ and
fuzz/, and all are those together with dt3Library/, tools/ and python/.
"""

import pathlib
import re
import sys

TESTS = ["tests", "fuzz"]
TESTED = ["dt3Library", "tools", "python"]
LARGEST = 1 / 3

# A comment, or a literal that may contain what looks like one.
TOKEN = re.compile(
    r'R"(?P<end>[^(\s]*)\(.*?\)(?P=end)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\''
    r"|(?P<comment>//[^\n]*|/\*.*?\*/)", re.DOTALL)


def code_lines(text):
    def without_comment(match):
        return "\n" * match[0].count("\n") if match["comment"] else match[0]

    return sum(1 for line in TOKEN.sub(without_comment, text).splitlines() if line.strip())


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    lines = {}
    for directory in TESTS + TESTED:
        lines[directory] = sum(code_lines(file.read_text(encoding="utf-8"))
                               for file in (root / directory).rglob("*")
                               if file.suffix in (".cpp", ".h"))
        print(f"{directory:12}{lines[directory]:7} code lines")
    share = sum(lines[directory] for directory in TESTS) / sum(lines.values())
    print(f"tests' share{share:7.1%}")
    if share > LARGEST:
        sys.exit("The tests are more than a third of the code: merge cases, or move them to data.")


main()
