#!/usr/bin/env python3
"""Runs clang-tidy over our sources, each once: lint_tidy.py [--changed | --all] [--jobs N] [FILE ...]

Without an argument it takes the sources of what runs in users' processes. --all takes every source.

The flags come from the compile databases of the presets mingw-release and native-tests, which must be configured. A
source that both build is checked as Windows code. GCC's own flags are dropped, and clang is told where the
cross-compiler keeps its headers. --changed takes only what differs from the last commit, and the sources that include
a changed header.
"""

import argparse
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
GCC_ONLY = re.compile(r"-f(no-)?sanitize|-Wnull-dereference|-fdiagnostics-color|-Winvalid-pch")
# What never runs in a user's process.
WORKSHOP = ("bench", "tests", "tools")
LINE = re.compile(r"^.+:\d+:\d+: (warning|error): ")


def cross_flags():
    """What clang needs to take the place of the cross-compiler."""
    cxx = "x86_64-w64-mingw32-g++-posix"
    output = subprocess.run([cxx, "-E", "-x", "c++", "-v", os.devnull], capture_output=True, text=True, check=True)
    listed = output.stderr.split("#include <...> search starts here:")[1].split("End of search list.")[0]
    folders = [str(Path(line.strip()).resolve()) for line in listed.splitlines() if line.strip()]
    flags = ["--target=x86_64-w64-mingw32", "-nostdinc++"]
    # clang finds the C headers itself; of GCC's it must only see those of the C++ library.
    for folder in folders:
        if "/c++" in folder:
            flags += ["-isystem", folder]
    return flags


def clang_arguments(entry, extra):
    arguments = shlex.split(entry["command"])
    kept = ["clang++"] + extra
    skip = False
    for argument in arguments[1:]:
        if skip:
            skip = False
        elif argument in ("-o", "-include"):  # -include brings in GCC's precompiled headers
            skip = True
        elif not GCC_ONLY.match(argument) and argument != "-Werror":
            kept.append(argument)
    # A finding of the compiler that clang words differently is the builds' business, not a reason to stop.
    return kept + ["-Wno-unknown-warning-option", "-Wno-unused-command-line-argument"]


def make_database():
    """One merged compile database of our own sources under build/lint; returns the sources."""
    cross = cross_flags()
    entries = {}
    for preset, extra in (("mingw-release", cross), ("native-tests", [])):
        path = ROOT / "build" / preset / "compile_commands.json"
        if not path.exists():
            sys.exit(f"{path.relative_to(ROOT)} is missing: run scripts/build.sh {preset}")
        for entry in json.loads(path.read_text(encoding="utf-8")):
            source = Path(entry["directory"], entry["file"]).resolve()
            ours = source.is_relative_to(ROOT) and not source.is_relative_to(ROOT / "build")
            if ours and source.suffix == ".cpp" and source not in entries:
                entries[source] = {
                    "directory": entry["directory"],
                    "file": str(source),
                    "arguments": clang_arguments(entry, extra),
                }
    folder = ROOT / "build" / "lint"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "compile_commands.json").write_text(json.dumps(list(entries.values()), indent=1), encoding="utf-8")
    return sorted(entries)


def changed_only(sources):
    """The sources that differ from the last commit, and those that name a changed header."""
    lines = subprocess.run(
        ["git", "status", "--porcelain", "--untracked-files=all"], cwd=ROOT, capture_output=True, text=True, check=True
    ).stdout.splitlines()
    changed = {line[3:].split(" -> ")[-1] for line in lines}
    headers = [f'#include "{name}"' for name in changed if name.endswith(".h")]

    def concerned(source):
        if str(source.relative_to(ROOT)) in changed:
            return True
        text = source.read_text(encoding="utf-8", errors="replace")
        return any(header in text for header in headers)

    return [source for source in sources if concerned(source)]


def check(source):
    """Returns the source, clang-tidy's exit code, what it found and the processor seconds that it took."""
    command = ["clang-tidy", "-quiet", "-p", str(ROOT / "build" / "lint"), str(source)]
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        # Spawned and waited for by hand: that tells the time of this one process.
        actions = [(os.POSIX_SPAWN_DUP2, out.fileno(), 1), (os.POSIX_SPAWN_DUP2, err.fileno(), 2)]
        process = os.posix_spawnp(command[0], command, os.environ, file_actions=actions)
        _, status, usage = os.wait4(process, 0)
        code = os.waitstatus_to_exitcode(status)
        # clang-tidy's own count of what it left out goes to the error stream.
        stream = out if code == 0 or out.tell() else err
        stream.seek(0)
        output = stream.read().decode("utf-8", "replace").strip()
    return source, code, output, usage.ru_utime + usage.ru_stime


def main():
    parser = argparse.ArgumentParser(description="clang-tidy over our sources")
    parser.add_argument("--changed", action="store_true", help="only what differs from the last commit")
    parser.add_argument("--all", action="store_true", help="tools, tests and benchmarks, too")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--times", action="store_true", help="print the processor seconds that each source took")
    parser.add_argument("files", nargs="*", help="only these sources")
    options = parser.parse_args()

    sources = make_database()
    if options.files:
        wanted = {Path(name).resolve() for name in options.files}
        sources = [source for source in sources if source in wanted]
    elif options.changed:
        sources = changed_only(sources)
    elif not options.all:
        sources = [source for source in sources if source.relative_to(ROOT).parts[0] not in WORKSHOP]
    # One finding in a header shows in every source that includes it; it is printed once.
    seen = set()
    failed = 0
    with ThreadPoolExecutor(options.jobs) as pool:
        for source, status, output, seconds in pool.map(check, sources):
            if options.times:
                print(f"{seconds:6.1f} s  {source.relative_to(ROOT)}")
            if status == 0 and not output:
                continue
            failed += 1
            printing = True
            for line in output.splitlines():
                if LINE.match(line):
                    printing = line not in seen
                    seen.add(line)
                if printing:
                    print(line.replace(f"{ROOT}/", ""))
    print(f"clang-tidy: {len(sources)} sources, {failed} with findings")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
