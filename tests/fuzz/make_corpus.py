#!/usr/bin/env python3
"""Writes the seeds of a fuzz program as files: make_corpus.py SEEDS.txt FOLDER

Every line is one seed, written like the inside of a Python bytes literal (\\n, \\x00, \\\\); "#" begins a comment line.
What a fuzz program found meanwhile stays in the folder.
"""

import ast
import sys
from pathlib import Path


def main(seeds, folder):
    folder = Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    for number, line in enumerate(Path(seeds).read_text(encoding="ascii").splitlines(), 1):
        if line and not line.startswith("#"):
            data = ast.literal_eval("b'" + line.replace("'", "\\'") + "'")
            (folder / f"seed-{number:03d}").write_bytes(data)


if __name__ == "__main__":
    main(*sys.argv[1:])
