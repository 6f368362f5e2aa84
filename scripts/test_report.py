#!/usr/bin/env python3
"""Counts single tests over the presets: test_report.py [--expect-tests] PRESET=RESULTS-FOLDER ...

With --expect-tests a preset without a single test is a failure. A results folder holds what scripts/test.sh leaves
there: listing.json (CTest's list of tests), ctest.xml (how each ended) and programs/*.json (the report of each
GoogleTest program). The last line printed is "N passed, N failed", with ", N skipped" behind it if there are any.
"""

import json
import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

OUTPUT_LINES = 30


class Count:
    """Passed and failed tests of one preset, and a text for each failure."""

    def __init__(self):
        self.passed = 0
        self.skipped = 0
        self.failures = []

    def fail(self, title, details=""):
        self.failures.append((title, details))


def read_text(path):
    return path.read_bytes().decode("utf-8", "replace")


def tail(text):
    return "\n".join(text.rstrip().splitlines()[-OUTPUT_LINES:])


def program_of(test, binaries, names):
    """The GoogleTest program that a CTest entry runs, or None when it runs something else."""
    for argument in test.get("command", []):
        path = Path(argument)
        program = path.name.removesuffix(".exe")
        if path.is_relative_to(binaries) and (program in names or program.endswith(("_test", "_tests"))):
            return program
    return None


def read_endings(path):
    """What CTest saw of every test: name -> (passed, output)."""
    # Programs may print what XML does not allow.
    text = re.sub(r"[^\t\n\r\x20-\ud7ff\ue000-\ufffd]|&#(?:x[0-9a-fA-F]+|\d+);", "?", read_text(path))
    endings = {}
    for case in ElementTree.fromstring(text).iter("testcase"):
        output = case.findtext("system-out") or ""
        output += f"\nIt ran for {float(case.get('time') or 0):.1f} s."
        endings[case.get("name")] = (case.get("status") == "run" and case.find("failure") is None, output)
    return endings


def count_report(count, path):
    """Adds the tests of one program's report; returns how many failures it told."""
    try:
        report = json.loads(read_text(path))
    except ValueError:
        count.fail(path.stem, "its report is cut off")
        return 1
    failed = 0
    for suite in report.get("testsuites", []):
        for case in suite["testsuite"]:
            if case.get("failures"):
                failed += 1
                texts = "\n".join(failure["failure"] for failure in case["failures"])
                count.fail(f"{path.stem} {suite['name']}.{case['name']}", tail(texts))
            elif case.get("result") == "SKIPPED":
                count.skipped += 1
            elif case.get("result") == "COMPLETED":
                count.passed += 1
    if report.get("tests", 0) == 0:
        failed += 1
        count.fail(path.stem, "the program holds no test")
    return failed


def count_program(count, program, runs, reports):
    """Adds one program's tests. `runs` tells how each of its CTest entries ended: (name, passed, output)."""
    # A second run of the same program writes NAME_1.json, and so on.
    found = [path for path in reports.glob(program + "*.json") if re.fullmatch(r"(_\d+)?", path.stem[len(program) :])]
    failed = sum(count_report(count, path) for path in sorted(found))
    bad = [run for run in runs if not run[1]]
    lost = len(runs) - len(found)
    for name, _, output in (bad or runs)[: max(lost, 0)]:
        count.fail(name, "it ended before its tests were through\n" + tail(output))
    if bad and failed == 0 and lost <= 0:
        for name, _, output in bad:
            count.fail(name, "every test passed, yet the program failed\n" + tail(output))


def count_preset(results):
    count = Count()
    if (results / "build-failed").exists():
        count.fail("the build", "see the log above")
        return count
    try:
        tests = json.loads(read_text(results / "listing.json"))["tests"]
        endings = read_endings(results / "ctest.xml") if tests else {}
    except (OSError, ValueError, KeyError, ElementTree.ParseError) as error:
        count.fail("CTest", f"it left no usable result: {error}")
        return count
    names = {test["name"] for test in tests}
    programs = {}
    for test in tests:
        name = test["name"]
        passed, output = endings.get(name, (False, "CTest did not run it"))
        program = program_of(test, results.parent / "bin", names)
        if program is not None:
            programs.setdefault(program, []).append((name, passed, output))
        elif passed:
            count.passed += 1
        else:
            count.fail(name, tail(output))
    for program, runs in programs.items():
        count_program(count, program, runs, results / "programs")
    return count


def main(arguments):
    passed = failed = skipped = 0
    expect_tests = "--expect-tests" in arguments
    for argument in arguments:
        preset, _, folder = argument.partition("=")
        if not folder:
            continue
        count = count_preset(Path(folder))
        if expect_tests and count.passed + len(count.failures) == 0:
            count.fail("the tests", "this preset has none")
        for title, details in count.failures:
            print(f"FAILED {preset}: {title}")
            for line in details.splitlines():
                print(f"  | {line}")
        print(f"{preset + ':':<20}{count.passed:>6} passed {len(count.failures):>6} failed {count.skipped:>6} skipped")
        passed += count.passed
        failed += len(count.failures)
        skipped += count.skipped
    if passed + failed == 0:
        print("No test ran.")
        failed = 1
    sys.stdout.flush()
    print(f"{passed} passed, {failed} failed" + (f", {skipped} skipped" if skipped else ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
