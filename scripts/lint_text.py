#!/usr/bin/env python3
"""Checks the plain-text rules of .editorconfig: lint_text.py FILE ...

UTF-8 without byte order mark, lines ended by a line feed alone, no blanks at line ends, no tabs, a line end at the end
of the file. Also: no binary files, and no path of one machine. Files in folders named testdata are left alone.
"""

import re
import sys
from pathlib import Path

MACHINE_PATH = re.compile(r"(?<![\w./$}-])/(?:work|root|home)/")


def faults_of(data):
    """Yields (line number, what is wrong)."""
    if not data:
        return
    if b"\0" in data:
        yield 1, "binary file"
        return
    try:
        text = data.decode("utf-8")
    except UnicodeDecodeError as error:
        yield data.count(b"\n", 0, error.start) + 1, "not UTF-8"
        return
    if text.startswith("\ufeff"):
        yield 1, "byte order mark"
    for number, line in enumerate(text.split("\n"), 1):
        if line.endswith("\r"):
            yield number, "carriage return at the line end"
        elif line != line.rstrip():
            yield number, "blanks at the line end"
        if "\t" in line:
            yield number, "tab"
        if MACHINE_PATH.search(line):
            yield number, "path of one machine"
    if not text.endswith("\n"):
        yield text.count("\n") + 1, "no line end at the end of the file"


def main(names):
    count = 0
    for name in names:
        path = Path(name)
        if "testdata" in path.parts or path.is_symlink() or not path.is_file():
            continue
        for number, fault in faults_of(path.read_bytes()):
            print(f"{name}:{number}: {fault}")
            count += 1
    return 1 if count else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
