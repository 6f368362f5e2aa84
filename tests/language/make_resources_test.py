"""Tests of language/make_resources.py: what it refuses, and what it writes."""

from __future__ import annotations

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path

LANGUAGE_FOLDER = Path(__file__).resolve().parents[2] / "language"
sys.path.insert(0, str(LANGUAGE_FOLDER))

import make_resources  # noqa: E402

LIST = "# a note\nIDS_PAGES 7 12 Number of pages.\nIDS_FILE 8 20 File name.\nTXT_NAME caption 20 Label.\n"
HEADER = "#define IDB_LOGO 1\n#define IDS_PAGES 7\n#define IDS_FILE 8\n"
ENGLISH = "IDS_PAGES = %d pages\nIDS_FILE = %1 of %2\nTXT_NAME = &Name\n"
GOOD = "# Notes\n\nTXT_NAME = \u540d\u524d(&N)\nIDS_PAGES = %d Seiten\nIDS_FILE = von %2: %1\n"


class GeneratorCase(unittest.TestCase):
    def setUp(self) -> None:
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)

    def run_generator(self, texts: bytes | str, *, list_text: str = LIST, header: str = HEADER) -> tuple[int, str]:
        """The exit code and the messages, with the folder's name taken off."""
        contents = {"list": list_text, "header": header, "english": ENGLISH, "texts": texts}
        arguments = []
        for name, content in contents.items():
            path = self.folder / f"{name}.txt"
            path.write_bytes(content if isinstance(content, bytes) else content.encode("utf-8"))
            arguments += [f"--{name}", str(path)]
        self.output = self.folder / "output.rc"
        self.output.unlink(missing_ok=True)
        messages = io.StringIO()
        with contextlib.redirect_stderr(messages):
            code = make_resources.main([*arguments, "--output", str(self.output)])
        return code, messages.getvalue().replace(f"{self.folder}/", "")

    def expect_fault(self, expected: str, texts: bytes | str, **lists: str) -> None:
        code, messages = self.run_generator(texts, **lists)
        self.assertEqual(code, 1)
        self.assertIn(expected, messages)
        self.assertEqual(messages.count("error:"), 1, messages)
        self.assertFalse(self.output.exists())


class TextFaults(GeneratorCase):
    def test_faulty_texts_are_refused(self) -> None:
        cases = {
            "missing": (GOOD.replace("IDS_PAGES", "#"), "texts.txt:5: error: missing entry IDS_PAGES"),
            "surplus": (GOOD + "IDS_MORE = x\n", "texts.txt:6: error: unknown entry IDS_MORE"),
            "duplicate": (GOOD + "TXT_NAME = x\n", "texts.txt:6: error: duplicate entry TXT_NAME: line 3 has"),
            "empty": (GOOD.replace("%d Seiten", " "), "texts.txt:4: error: IDS_PAGES: the text is empty"),
            "too long": (GOOD.replace("%d Seiten", "%d " + "x" * 10), "texts.txt:4: error: IDS_PAGES: the text is too"),
            "too long in UTF-16 only": (GOOD.replace("Seiten", "\U00020bb7" * 5), "13 characters, 12 fit"),
            "no equals sign": (GOOD + "IDS_PAGES\n", 'texts.txt:6: error: expected "NAME = text"'),
            "placeholder lost": (GOOD.replace("%d ", ""), "texts.txt:4: error: IDS_PAGES: the placeholders differ"),
            "placeholder changed": (GOOD.replace("%d", "%s"), "texts.txt:4: error: IDS_PAGES: the placeholders differ"),
            "placeholder twice": (GOOD.replace("%2", "%1"), "texts.txt:5: error: IDS_FILE: the placeholders differ"),
            "access key lost": (GOOD.replace("&", ""), 'texts.txt:3: error: TXT_NAME: the number of access keys ("&")'),
            "access key escaped": (GOOD.replace("&", "&&"), "texts.txt:3: error: TXT_NAME: the number of access keys"),
            "unknown escape": (GOOD.replace("Seiten", "\\t"), 'texts.txt:4: error: IDS_PAGES: "\\" may only begin'),
            "damaged": (GOOD.replace("Seiten", "\ufffd"), "texts.txt:4: error: IDS_PAGES: U+FFFD is no character"),
            "control character": (GOOD.replace("Seiten", "\x07x"), "texts.txt:4: error: IDS_PAGES: U+0007"),
            "separate accents": (GOOD.replace("Seiten", "Sa\u0308"), "texts.txt:4: error: IDS_PAGES: accents are"),
        }
        for name, (texts, expected) in cases.items():
            with self.subTest(name):
                self.expect_fault(expected, texts)

    def test_other_encodings_are_refused(self) -> None:
        cases = {
            "Windows code page": (GOOD.replace("Seiten", "f\u00fcr").encode("latin-1", "ignore"), 4),
            "UTF-16": (GOOD.encode("utf-16"), 1),
            "cut off inside a character": (GOOD.encode("utf-8") + b"# \xe5\x90", 6),
        }
        for name, (texts, line) in cases.items():
            with self.subTest(name):
                self.expect_fault(f"texts.txt:{line}: error: byte 0x", texts)

    def test_all_faults_are_told_at_once(self) -> None:
        code, messages = self.run_generator("IDS_PAGES =\nIDS_PAGES = x\nIDS_OTHER = y\n")
        self.assertEqual(code, 1)
        for expected in ("1: error: IDS_PAGES: the text is empty", "2: error: duplicate", "3: error: unknown entry",
                         "missing entry IDS_FILE", "missing entry TXT_NAME"):
            self.assertIn(expected, messages)


class ListFaults(GeneratorCase):
    def test_faulty_lists_are_refused(self) -> None:
        cases = {
            "no note": (LIST.replace(" Label.", ""), HEADER, "list.txt:4: error: expected"),
            "same name": (LIST + "IDS_PAGES caption 9 Again.\n", HEADER, "list.txt:5: error: IDS_PAGES is already taken"),
            "same number": (LIST.replace("8 20", "7 20"), HEADER.replace("8", "7"), "list.txt:3: error: 7 is already"),
            "number too high": (LIST.replace(" 8 ", " 65536 "), HEADER.replace("8", "65536"), "list.txt:3: error: 65536"),
            "header lacks one": (LIST, HEADER.replace("IDS_FILE", "IDC_X"), "list.txt:3: error: IDS_FILE is missing in"),
            "header has one more": (LIST, HEADER + "#define IDS_OLD 9\n", "header.txt:4: error: IDS_OLD is not in"),
            "header disagrees": (LIST, HEADER.replace("8", "9"), "header.txt:3: error: IDS_FILE is 9 here and 8 in"),
        }
        for name, (list_text, header, expected) in cases.items():
            with self.subTest(name):
                self.expect_fault(expected, GOOD, list_text=list_text, header=header)


class Output(GeneratorCase):
    def test_script_holds_escaped_texts(self) -> None:
        code, messages = self.run_generator(GOOD.replace("Seiten", '\u00e4b"\\\\\\n'))
        self.assertEqual((code, messages), (0, ""))
        script = self.output.read_text(encoding="ascii")
        self.assertIn('    IDS_PAGES L"%d \\x00e4b""\\\\\\n"\n', script)
        self.assertIn('#define TXT_NAME L"\\x540d\\x524d(&N)"\n', script)
        self.assertNotIn("    TXT_NAME", script)

    def test_byte_order_mark_and_windows_line_ends_change_nothing(self) -> None:
        self.assertEqual(self.run_generator(GOOD)[0], 0)
        plain = self.output.read_bytes()
        marked = b"\xef\xbb\xbf" + GOOD.replace("\n", "\r\n").encode("utf-8")
        self.assertEqual(self.run_generator(marked), (0, ""))
        self.assertEqual(self.output.read_bytes(), plain)


if __name__ == "__main__":
    unittest.main()
