#!/usr/bin/env python3
"""Checks the dialog templates of built language libraries: check_templates.py --header H --controls T LIBRARY.dll ...

Every fault is printed as "file: page: control: error: what is wrong"; with any fault the exit code is 1. README.md
tells the rules. Whether the texts fit is measured with real fonts by the language layout test.
"""

from __future__ import annotations

import argparse
import itertools
import re
import sys
from dataclasses import dataclass, field
from pathlib import Path

from dialog_templates import Control, Template, read_templates

PAGE_SIZE = (252, 218)
PAGE_FONT = "MS Shell Dlg"
# The sizes in which Windows has its own dialogs, by language.
FONT_POINTS = {"ja": 9, "ko": 9, "zh": 9}
USUAL_FONT_POINTS = 8
MARGIN = 7
GROUP_TOP, GROUP_SIDE, GROUP_BOTTOM = 11, 6, 7
LABEL_GAP = 3
SMALLEST_GAP = 3
NO_IDENTIFIER = 0xFFFFFFFF
# The letters of the sheet's own Apply button.
RESERVED_KEYS = {"de_de_407": "AB"}
USUALLY_RESERVED_KEYS = "A"

DS_SHELLFONT = 0x48
WS_CHILD, WS_VISIBLE, WS_DISABLED, WS_GROUP, WS_TABSTOP = 1 << 30, 1 << 28, 1 << 27, 1 << 17, 1 << 16
CLOSED_LIST_HEIGHT = 14
HEIGHTS = {"list": 14, "number": 14, "button": 14, "radio": 10, "check": 10, "spin": 14}
LABELLED = ("list", "number")
WITH_ACCESS_KEY = ("radio", "check", "button")
INTERACTIVE = LABELLED + WITH_ACCESS_KEY

# Class, the bits of the style that make out the kind, and their values.
KINDS = {
    "list": ("COMBOBOX", 0x0133, 0x0003),  # CBS_DROPDOWNLIST; not sorted, not owner-drawn
    "number": ("EDIT", 0x2000, 0x2000),  # ES_NUMBER
    "spin": ("MSCTLS_UPDOWN32", 0x0012, 0x0012),  # UDS_AUTOBUDDY | UDS_SETBUDDYINT
    "radio": ("BUTTON", 0x000F, 0x0009),  # BS_AUTORADIOBUTTON
    "check": ("BUTTON", 0x000F, 0x0003),  # BS_AUTOCHECKBOX
    "button": ("BUTTON", 0x000F, 0x0000),  # BS_PUSHBUTTON
    "group": ("BUTTON", 0x000F, 0x0007),  # BS_GROUPBOX
    "picture": ("STATIC", 0x001F, 0x000E),  # SS_BITMAP
    "label": ("STATIC", 0x001F, 0x0000),  # SS_LEFT
}


def kind_of(control: Control) -> str:
    for kind, (class_name, mask, value) in KINDS.items():
        if control.class_name == class_name and control.style & mask == value:
            return kind
    return "unknown"


@dataclass(frozen=True)
class Item:
    """A control with what the checks ask again and again."""

    control: Control
    kind: str
    name: str

    @property
    def bottom(self) -> int:
        # A list's height in the template is that of the open list.
        return self.control.y + CLOSED_LIST_HEIGHT if self.kind == "list" else self.control.bottom

    def has(self, style: int) -> bool:
        return self.control.style & style == style

    @property
    def access_keys(self) -> list[str]:
        return [letter.upper() for letter in re.findall("&(.)", self.control.text) if letter != "&"]


@dataclass
class Page:
    """One template under examination."""

    template: Template
    name: str
    reserved_keys: str
    items: list[Item]
    points: int
    faults: list[str] = field(default_factory=list)

    def fault(self, item: Item | None, message: str) -> None:
        self.faults.append(f"{self.name}: {item.name + ': ' if item else ''}error: {message}")

    def pairs(self):
        return zip([None, *self.items], self.items)


def gap_between(first: Item, second: Item) -> int:
    """The free space between two controls; negative if they overlap."""
    across = max(first.control.x, second.control.x) - min(first.control.right, second.control.right)
    down = max(first.control.y, second.control.y) - min(first.bottom, second.bottom)
    return max(across, down)


def encloses(group: Item, item: Item) -> bool:
    return (
        item.control.x >= group.control.x + GROUP_SIDE
        and item.control.right <= group.control.right - GROUP_SIDE
        and item.control.y >= group.control.y + GROUP_TOP
        and item.bottom <= group.bottom - GROUP_BOTTOM
    )


def check_frame(page: Page) -> None:
    template = page.template
    if not template.caption or "&" in template.caption:
        page.fault(None, "the page needs a title without access key")
    if (template.width, template.height) != PAGE_SIZE:
        page.fault(None, f"the page is {template.width} x {template.height}, not {PAGE_SIZE[0]} x {PAGE_SIZE[1]}")
    if template.font != (page.points, PAGE_FONT) or template.style & DS_SHELLFONT != DS_SHELLFONT:
        page.fault(None, f"the font is not {PAGE_FONT}, {page.points} points, with DS_SHELLFONT")
    if not template.style & WS_CHILD or template.style & WS_DISABLED:
        page.fault(None, "a page is a child window and not disabled")


def check_expected(page: Page, expected: dict[str, str]) -> None:
    named = [item for item in page.items if item.control.identifier != NO_IDENTIFIER]
    for name, kind in expected.items():
        found = [item for item in named if item.name == name]
        if len(found) != 1:
            page.fault(None, f"{name} is there {len(found)} times" if found else f"{name} is missing")
        elif found[0].kind != kind:
            control = found[0].control
            page.fault(found[0], f"is no {kind}: {control.class_name}, style 0x{control.style:08x}")
    for item in named:
        if item.name not in expected:
            page.fault(item, "is not in the table of controls")


def check_texts(page: Page) -> None:
    for item in page.items:
        if item.kind in (*WITH_ACCESS_KEY, "label", "group") and not item.control.text.strip():
            page.fault(item, "has no text")
        if not item.has(WS_CHILD | WS_VISIBLE) or item.has(WS_DISABLED):
            page.fault(item, "is not visible and enabled")


def check_access_keys(page: Page) -> None:
    owners: dict[str, Item] = {}
    for item, follower in zip(page.items, [*page.items[1:], None]):
        wanted = item.kind in WITH_ACCESS_KEY or (
            item.kind == "label" and follower is not None and follower.kind in LABELLED)
        keys = item.access_keys
        if len(keys) != wanted:
            page.fault(item, f'"{item.control.text}" has {len(keys)} access keys instead of {int(wanted)}')
        for key in keys:
            if not key.isalnum():
                page.fault(item, f'"{key}" in "{item.control.text}" is no letter')
            elif key in page.reserved_keys:
                page.fault(item, f'{key} in "{item.control.text}" belongs to the Apply button')
            elif key in owners:
                page.fault(item, f'"{item.control.text}" and "{owners[key].control.text}" share the access key {key}')
            owners.setdefault(key, item)


def check_labels(page: Page) -> None:
    for before, item in page.pairs():
        if item.kind == "spin":
            if before is None or before.kind != "number":
                page.fault(item, "is not directly after its edit field")
        elif item.kind in LABELLED:
            if before is None or before.kind != "label":
                page.fault(item, "has no label directly before it")
            elif (before.control.x, before.bottom + LABEL_GAP) != (item.control.x, item.control.y):
                page.fault(item, f'is not {LABEL_GAP} below its label "{before.control.text}"')


def check_places(page: Page) -> None:
    groups = [item for item in page.items if item.kind == "group"]
    for item in page.items:
        control = item.control
        if (control.x < MARGIN or control.y < MARGIN or control.right > page.template.width - MARGIN
                or item.bottom > page.template.height - MARGIN):
            page.fault(item, f"reaches into the margin of {MARGIN}")
        if control.height != HEIGHTS.get(item.kind, control.height) and item.kind != "list":
            page.fault(item, f"is {control.height} high, not {HEIGHTS[item.kind]}")
        if item.kind == "label" and control.height % 8:
            page.fault(item, "is not as high as whole lines of 8")
    for first, second in itertools.combinations(page.items, 2):
        gap = gap_between(first, second)
        if second.kind == "spin" and first.kind == "number":
            continue
        if first in groups or second in groups:
            group, item = (first, second) if first in groups else (second, first)
            if gap < SMALLEST_GAP and not encloses(group, item):
                page.fault(item, f'is too near to the frame "{group.control.text}"')
        elif gap < SMALLEST_GAP:
            page.fault(second, f"overlaps or is nearer than {SMALLEST_GAP} to {first.name}")


def check_alignment(page: Page) -> None:
    edges = sorted({item.control.x for item in page.items if item.kind != "spin"})
    for left, right in itertools.pairwise(edges):
        if right - left < 4:
            page.fault(None, f"left edges at {left} and {right} are nearly, but not quite, in line")


def check_tab_order(page: Page) -> None:
    last = None
    for before, item in page.pairs():
        is_first_radio = item.kind == "radio" and (before is None or before.kind != "radio")
        is_later_radio = item.kind == "radio" and not is_first_radio
        if item.has(WS_TABSTOP) != (item.kind in INTERACTIVE and not is_later_radio):
            page.fault(item, "has a tab stop that it should not have" if item.has(WS_TABSTOP) else "has no tab stop")
        if is_first_radio and not item.has(WS_GROUP):
            page.fault(item, "begins a row of radio buttons without WS_GROUP")
        if is_later_radio and item.has(WS_GROUP):
            page.fault(item, "is cut off from its row of radio buttons by WS_GROUP")
        if before is not None and before.kind == "radio" and item.kind != "radio" and not item.has(WS_GROUP):
            page.fault(item, "joins the row of radio buttons before it: WS_GROUP is missing")
        if item.kind not in INTERACTIVE:
            continue
        if last is not None and item.control.y <= last.control.y and item.control.x <= last.control.x:
            page.fault(item, f"follows {last.name} in the tab order but is above it or to its left")
        last = item


def check_page(page: Page, expected: dict[str, str]) -> list[str]:
    check_frame(page)
    check_expected(page, expected)
    if page.faults:
        return page.faults  # the rest would be consequences
    for check in (check_texts, check_access_keys, check_labels, check_places, check_alignment, check_tab_order):
        check(page)
    return page.faults


def item_name(control: Control, names: dict[int, str]) -> str:
    if control.identifier == NO_IDENTIFIER:
        return f'"{control.text}"'
    return names.get(control.identifier, f"control {control.identifier}")


def read_names(header: Path) -> dict[str, int]:
    pattern = re.compile(r"^#define\s+(ID[DC]_\w+)\s+(\d+)", re.MULTILINE)
    return {name: int(number) for name, number in pattern.findall(header.read_text(encoding="utf-8"))}


def read_expected(path: Path, names: dict[str, int]) -> dict[str, dict[str, str]]:
    """Kinds by page and control. ValueError for a line that makes no sense."""
    expected: dict[str, dict[str, str]] = {}
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        words = line.split()
        if len(words) != 3 or words[0] not in names or words[1] not in names or words[2] not in KINDS:
            raise ValueError(f'{path}:{number}: expected "PAGE CONTROL KIND", with names of the header')
        expected.setdefault(words[0], {})[words[1]] = words[2]
    return expected


def check_library(path: Path, names: dict[str, int], expected: dict[str, dict[str, str]]) -> list[str]:
    code = path.stem.partition("_")[2]
    reserved = RESERVED_KEYS.get(code, USUALLY_RESERVED_KEYS)
    points = FONT_POINTS.get(code.partition("_")[0], USUAL_FONT_POINTS)
    controls = {number: name for name, number in names.items() if name.startswith("IDC_")}
    templates = {template.identifier: template for template in read_templates(path)}
    faults = []
    for name in expected:
        template = templates.pop(names[name], None)
        if template is None:
            faults.append(f"{name}: error: the page is missing")
            continue
        items = [Item(control, kind_of(control), item_name(control, controls)) for control in template.controls]
        faults += check_page(Page(template, name, reserved, items, points), expected[name])
    faults += [f"template {identifier}: error: is not in the table of controls" for identifier in templates]
    return faults


def main(arguments: list[str]) -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--header", type=Path, required=True, help="resource_ids.h")
    parser.add_argument("--controls", type=Path, required=True, help="template_controls.txt")
    parser.add_argument("libraries", type=Path, nargs="+", metavar="LIBRARY.dll")
    options = parser.parse_args(arguments)
    try:
        names = read_names(options.header)
        expected = read_expected(options.controls, names)
        faults = [f"{path.name}: {fault}"
                  for path in options.libraries for fault in check_library(path, names, expected)]
    except (ValueError, OSError) as error:
        print(f"check_templates.py: error: {error}", file=sys.stderr)
        return 1
    if faults:
        print("\n".join(faults), file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
