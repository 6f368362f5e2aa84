"""Tests of language/check_templates.py: each fault that it is there for is found, and nothing else."""

from __future__ import annotations

import sys
import unittest
from dataclasses import replace
from pathlib import Path

LANGUAGE_FOLDER = Path(__file__).resolve().parents[2] / "language"
sys.path.insert(0, str(LANGUAGE_FOLDER))

import check_templates  # noqa: E402
from dialog_templates import Control, Template  # noqa: E402

UNNAMED = 0xFFFFFFFF
SHOWN, GROUP, STOP = 0x50000000, 0x20000, 0x10000
NAMES = {1: "IDC_LIST", 2: "IDC_COPIES", 3: "IDC_SPIN", 4: "IDC_ONE", 5: "IDC_TWO", 6: "IDC_CHECK", 7: "IDC_PICTURE"}
EXPECTED = {"IDC_LIST": "list", "IDC_COPIES": "number", "IDC_SPIN": "spin", "IDC_ONE": "radio", "IDC_TWO": "radio",
            "IDC_CHECK": "check", "IDC_PICTURE": "picture"}
GOOD = [
    Control(UNNAMED, "STATIC", "&List:", SHOWN | GROUP, 7, 7, 100, 8),
    Control(1, "COMBOBOX", "", SHOWN | STOP | 0x200003, 7, 18, 100, 90),
    Control(UNNAMED, "STATIC", "&Copies:", SHOWN | GROUP, 7, 39, 100, 8),
    Control(2, "EDIT", "", SHOWN | STOP | 0x2080, 7, 50, 46, 14),
    Control(3, "MSCTLS_UPDOWN32", "", SHOWN | 0xB6, 42, 50, 11, 14),
    Control(UNNAMED, "BUTTON", "Frame", SHOWN | GROUP | 7, 7, 71, 238, 42),
    Control(4, "BUTTON", "&One && more", SHOWN | GROUP | STOP | 9, 13, 82, 226, 10),
    Control(5, "BUTTON", "\u4e8c(&T)", SHOWN | 9, 13, 96, 226, 10),
    Control(6, "BUTTON", "Chec&k", SHOWN | GROUP | STOP | 3, 7, 120, 100, 10),
    Control(7, "STATIC", "", SHOWN | 0x20E, 161, 120, 84, 28),
]
LIST, SPIN, FRAME, ONE, TWO, CHECK, PICTURE = 1, 4, 5, 6, 7, 8, 9


class CheckerCase(unittest.TestCase):
    def faults(self, controls: list[Control], **template: object) -> list[str]:
        page = replace(Template(1, "Title", 0x40000448, 252, 218, (8, "MS Shell Dlg"), controls), **template)
        items = [check_templates.Item(control, check_templates.kind_of(control),
                                      check_templates.item_name(control, NAMES)) for control in controls]
        return check_templates.check_page(check_templates.Page(page, "PAGE", "A", items, 8), EXPECTED)

    def test_a_good_page_has_no_faults(self) -> None:
        self.assertEqual(self.faults(GOOD), [])

    def test_a_faulty_control_is_found(self) -> None:
        for index, change, expected in [
            (LIST, {"style": SHOWN | STOP | 0x103}, ["IDC_LIST: error: is no list: COMBOBOX"]),  # sorted
            (ONE, {"style": SHOWN | GROUP | STOP | 4}, ["IDC_ONE: error: is no radio: BUTTON"]),  # not automatic
            (PICTURE, {"identifier": 9}, ["IDC_PICTURE is missing", "control 9: error: is not in the table"]),
            (CHECK, {"text": " "}, ["IDC_CHECK: error: has no text", "0 access keys instead of 1"]),
            (CHECK, {"text": "Check"}, ["has 0 access keys instead of 1"]),
            (CHECK, {"text": "&Chec&k"}, ["has 2 access keys instead of 1", "share the access key C"]),
            (CHECK, {"text": "C&heck t&&t"}, []),
            (CHECK, {"text": "Check &l"}, ['"Check &l" and "&List:" share the access key L']),
            (CHECK, {"text": "Check &a"}, ["A in \"Check &a\" belongs to the Apply button"]),
            (CHECK, {"text": "Check &."}, ['"." in "Check &." is no letter']),
            (FRAME, {"text": "&Frame"}, ["has 1 access keys instead of 0"]),
            (LIST, {"y": 17}, ['IDC_LIST: error: is not 3 below its label "&List:"', "IDC_LIST: error: overlaps"]),
            (LIST, {"width": 239}, ["IDC_LIST: error: reaches into the margin"]),
            (CHECK, {"y": 115}, ['IDC_CHECK: error: is too near to the frame "Frame"']),
            (TWO, {"width": 227}, ['IDC_TWO: error: is too near to the frame "Frame"']),
            (TWO, {"y": 94}, ["IDC_TWO: error: overlaps or is nearer than 3 to IDC_ONE"]),
            (TWO, {"height": 9}, ["IDC_TWO: error: is 9 high, not 10"]),
            (CHECK, {"x": 10}, ["left edges at 7 and 10 are nearly", "left edges at 10 and 13"]),
            (ONE, {"style": SHOWN | STOP | 9}, ["IDC_ONE: error: begins a row"]),
            (TWO, {"style": SHOWN | GROUP | 9}, ["IDC_TWO: error: is cut off"]),
            (TWO, {"style": SHOWN | STOP | 9}, ["IDC_TWO: error: has a tab stop that"]),
            (CHECK, {"style": SHOWN | STOP | 3}, ["IDC_CHECK: error: joins the row"]),
            (LIST, {"style": SHOWN | 3}, ["IDC_LIST: error: has no tab stop"]),
            (LIST, {"style": 0x40010003}, ["IDC_LIST: error: is not visible and enabled"]),
        ]:
            with self.subTest(control=index, **change):
                controls = list(GOOD)
                controls[index] = replace(GOOD[index], **change)
                self.expect(self.faults(controls), expected)

    def test_a_wrong_order_is_found(self) -> None:
        for order, expected in [
            ((1, 0, 2, 3, 4, 5, 6, 7, 8, 9), ["has 1 access keys instead of 0", "IDC_LIST: error: has no label"]),
            ((0, 1, 2, 4, 3, 5, 6, 7, 8, 9), ["has 1 access keys", "IDC_SPIN: error: is not directly after",
                                              "IDC_COPIES: error: has no label", "IDC_COPIES: error: overlaps"]),
            ((8, 0, 1, 2, 3, 4, 5, 6, 7, 9), ["IDC_LIST: error: follows IDC_CHECK in the tab order",
                                              "IDC_PICTURE: error: joins the row"]),
        ]:
            with self.subTest(order=order):
                self.expect(self.faults([GOOD[index] for index in order]), expected)

    def test_a_faulty_frame_is_found(self) -> None:
        for change, expected in [
            ({"caption": ""}, "the page needs a title"),
            ({"caption": "&Title"}, "the page needs a title without access key"),
            ({"width": 260}, "the page is 260 x 218"),
            ({"font": (9, "MS Shell Dlg")}, "the font is not"),
            ({"style": 0x40000440}, "the font is not"),
            ({"style": 0x48000448}, "a page is a child window and not disabled"),
        ]:
            with self.subTest(**change):
                self.expect(self.faults(GOOD, **change), [expected])

    def expect(self, faults: list[str], expected: list[str]) -> None:
        self.assertEqual(len(faults), len(expected), faults)
        for text in expected:
            self.assertTrue(any(text in fault for fault in faults), f"{text!r} is not in {faults}")


if __name__ == "__main__":
    unittest.main()
