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
        with self.subTest(expected):
            code, messages = self.run_generator(texts, **lists)
            self.assertEqual(code, 1)
            self.assertIn(expected, messages)
            self.assertEqual(messages.count("error:"), 1, messages)
            self.assertFalse(self.output.exists())

    def test_faulty_texts_are_refused(self) -> None:
        for old, new, expected in [
            ("IDS_PAGES", "#", "5: error: missing entry IDS_PAGES"),
            ("# Notes", "IDS_MORE = x", "1: error: unknown entry IDS_MORE"),
            ("# Notes", "TXT_NAME = (&x)", "3: error: duplicate entry TXT_NAME: line 1 has"),
            ("# Notes", "IDS_PAGES", '1: error: expected "NAME = text"'),
            ("%d Seiten", " ", "4: error: IDS_PAGES: the text is empty"),
            ("Seiten", "x" * 10, "4: error: IDS_PAGES: the text is too long: 13 characters, 12 fit"),
            ("Seiten", "\U00020bb7" * 5, "4: error: IDS_PAGES: the text is too long: 13 characters, 12 fit"),
            ("%d ", "", "4: error: IDS_PAGES: the placeholders differ"),
            ("%2", "%1", "5: error: IDS_FILE: the placeholders differ"),
            ("&", "", '3: error: TXT_NAME: the number of access keys ("&")'),
            ("&", "&&", '3: error: TXT_NAME: the number of access keys ("&")'),
            ("Seiten", "\\t", '4: error: IDS_PAGES: "\\" may only begin'),
            ("Seiten", "\ufffd", "4: error: IDS_PAGES: U+FFFD is no character"),
            ("Seiten", "\x07x", "4: error: IDS_PAGES: U+0007"),
            ("Seiten", "Sa\u0308", "4: error: IDS_PAGES: accents are"),
        ]:
            self.expect_fault(f"texts.txt:{expected}", GOOD.replace(old, new))

    def test_other_encodings_are_refused(self) -> None:
        self.expect_fault("texts.txt:4: error: byte 0xfc", GOOD.encode("utf-8").replace(b"Seiten", b"f\xfcr"))
        self.expect_fault("texts.txt:1: error: byte 0xff", b"\xff\xfe" + GOOD.encode("utf-16-le"))
        self.expect_fault("texts.txt:6: error: byte 0xe5", GOOD.encode("utf-8") + b"# \xe5\x90")

    def test_all_faults_are_told_at_once(self) -> None:
        code, messages = self.run_generator("IDS_PAGES =\nIDS_PAGES = x\nIDS_OTHER = y\n")
        self.assertEqual(code, 1)
        for expected in ("1: error: IDS_PAGES: the text is empty", "2: error: duplicate", "3: error: unknown entry",
                         "missing entry IDS_FILE", "missing entry TXT_NAME"):
            self.assertIn(expected, messages)

    def test_faulty_lists_are_refused(self) -> None:
        for list_text, header, expected in [
            (LIST.replace(" Label.", ""), HEADER, "list.txt:4: error: expected"),
            (LIST + "IDS_PAGES caption 9 Again.\n", HEADER, "list.txt:5: error: IDS_PAGES is already taken"),
            (LIST.replace("8 20", "7 20"), HEADER.replace("8", "7"), "list.txt:3: error: 7 is already"),
            (LIST.replace(" 8 ", " 65536 "), HEADER.replace("8", "65536"), "list.txt:3: error: 65536"),
            (LIST, HEADER.replace("IDS_FILE", "IDC_X"), "list.txt:3: error: IDS_FILE is missing in"),
            (LIST, HEADER + "#define IDS_OLD 9\n", "header.txt:4: error: IDS_OLD is not in"),
            (LIST, HEADER.replace("8", "9"), "header.txt:3: error: IDS_FILE is 9 here and 8 in"),
        ]:
            self.expect_fault(expected, GOOD, list_text=list_text, header=header)

    def test_script_holds_escaped_texts(self) -> None:
        texts = GOOD.replace("Seiten", '\u00e4b"\\\\\\n')
        self.assertEqual(self.run_generator(texts), (0, ""))
        script = self.output.read_text(encoding="ascii")
        self.assertIn('    IDS_PAGES L"%d \\x00e4b""\\\\\\n"\n', script)
        self.assertIn('#define TXT_NAME L"\\x540d\\x524d(&N)"\n', script)
        self.assertNotIn("    TXT_NAME", script)
        # A byte order mark and Windows line ends change nothing.
        marked = b"\xef\xbb\xbf" + texts.replace("\n", "\r\n").encode("utf-8")
        self.assertEqual(self.run_generator(marked), (0, ""))
        self.assertEqual(self.output.read_text(encoding="ascii"), script)


if __name__ == "__main__":
    unittest.main()
