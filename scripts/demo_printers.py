#!/usr/bin/env python3
"""The two printers of scripts/demo.sh.

demo_printers.py IMPORTED-FOLDER DEMO-FOLDER
    Copies the imported printer profile, and a second copy with two-sided printing locked. Prints six lines: the two
    printer names, then a duplex mode, a paper number and a media type (its number, then its name) that the printer
    has and that are not its defaults.
demo_printers.py --verdict PRINTER DUPLEX PAPER LOGS  (standard input: what "printctl devmode --json" printed)
    Says in words what the merge did; fails unless the lock held and everything else was taken over.
"""

import json
import shutil
import sys
from pathlib import Path

DUPLEX_NUMBERS = {"simplex": 1, "vertical": 2, "horizontal": 3}


def prepare(imported, demo):
    profiles = sorted(imported.glob("*.json"))
    if not profiles:
        sys.exit(f"no imported printer in {imported}")
    profile = json.loads(profiles[0].read_text(encoding="utf-8"))
    name = profile["name"]
    defaults = profile["deviceMode"]
    duplex = [mode for mode in profile["duplex"] if mode != defaults.get("duplex", "simplex")]
    papers = [paper["id"] for paper in profile["papers"] if paper["id"] != defaults["paper"]]

    media = [kind for kind in profile["mediaTypes"] if kind["id"] != defaults.get("mediaType")]

    shutil.rmtree(demo, ignore_errors=True)
    demo.mkdir(parents=True)
    (demo / "printer.json").write_text(json.dumps(profile, indent=2), encoding="utf-8")
    profile["name"] = f"{name} (duplex locked)"
    profile.setdefault("private", {})["locked"] = ["duplex"]
    (demo / "locked.json").write_text(json.dumps(profile, indent=2), encoding="utf-8")
    print(name, profile["name"], duplex[-1], 9 if 9 in papers else papers[0], sep="\n")
    print(media[0]["id"], media[0]["name"], sep="\n")


def verdict(printer, duplex, paper, logs):
    fields = json.load(sys.stdin)["deviceMode"]["fields"]
    got = {name: fields[name]["value"] for name in ("duplex", "paper", "copies")}
    if got["duplex"] == DUPLEX_NUMBERS[duplex] or got["paper"] != int(paper) or got["copies"] != 3:
        sys.exit(f"The merge did not do what it should: {got}")
    in_words = {number: name for name, number in DUPLEX_NUMBERS.items()}[got["duplex"]]
    paper_name = fields["paper"].get("name", paper)
    print(
        f'Windows\' printing functions loaded the driver module, which knows nothing about "{printer}" itself: the\n'
        f"capabilities and the default settings came from the printer service. Then an application asked for\n"
        f"{duplex} two-sided printing, paper {paper} and 3 copies on the locked printer. The module took over the\n"
        f"paper ({paper_name}) and the copies and refused the duplex mode: it stayed {in_words}. Each of the {logs}\n"
        f"processes that loaded the module left a log of its own."
    )


if __name__ == "__main__":
    if sys.argv[1] == "--verdict":
        verdict(*sys.argv[2:6])
    else:
        prepare(Path(sys.argv[1]), Path(sys.argv[2]))
