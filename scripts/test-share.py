#!/usr/bin/env python3
"""Prints the share of the code that is tests, counted in code lines (neither blank nor comment).

Counted are C++, Python, shell and awk files: the tests' are those of tests/ and fuzz/, and all are
those together with dt3Library/, tools/ and the bindings. Fails above a third, warns below a quarter.
"""

import io
import pathlib
import re
import sys
import tokenize

TESTS = ["tests", "fuzz"]
TESTED = ["dt3Library", "tools", "python", "bindings"]
LARGEST = 1 / 3
SMALLEST = 1 / 4

# A comment, or a literal that may contain what looks like one.
CPP_TOKEN = re.compile(
    r'R"(?P<end>[^(\s]*)\(.*?\)(?P=end)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\''
    r"|(?P<comment>//[^\n]*|/\*.*?\*/)", re.DOTALL)
NO_CODE = {tokenize.COMMENT, tokenize.NL, tokenize.NEWLINE, tokenize.INDENT, tokenize.DEDENT,
           tokenize.ENCODING, tokenize.ENDMARKER}


def lines_of_cpp(text):
    def without_comment(match):
        return "\n" * match[0].count("\n") if match["comment"] else match[0]

    return sum(1 for line in CPP_TOKEN.sub(without_comment, text).splitlines() if line.strip())


def lines_of_python(text):
    """Strings that stand alone, as docstrings do, count as comments."""
    lines, logical = set(), []
    for token in tokenize.generate_tokens(io.StringIO(text).readline):
        if token.type not in NO_CODE:
            logical.append(token)
        elif token.type in (tokenize.NEWLINE, tokenize.ENDMARKER):
            if any(part.type != tokenize.STRING for part in logical):
                lines.update(line for part in logical
                             for line in range(part.start[0], part.end[0] + 1))
            logical = []
    return len(lines)


def lines_of_script(text):
    return sum(1 for line in text.splitlines() if line.strip() and not line.lstrip().startswith("#"))


COUNTERS = {".cpp": lines_of_cpp, ".h": lines_of_cpp, ".py": lines_of_python,
            ".sh": lines_of_script, ".awk": lines_of_script}


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    lines = {}
    for directory in TESTS + TESTED:
        lines[directory] = sum(COUNTERS[file.suffix](file.read_text())
                               for file in (root / directory).rglob("*") if file.suffix in COUNTERS)
        if lines[directory] > 0:
            print(f"{directory:12}{lines[directory]:7} code lines")
    tests = sum(lines[directory] for directory in TESTS)
    share = tests / sum(lines.values())
    print(f"tests' share{share:7.1%}")
    if share > LARGEST:
        sys.exit("The tests are more than a third of the code: merge cases, or move them to data.")
    if share < SMALLEST:
        print("Warning: the tests are less than a quarter of the code.")


main()
