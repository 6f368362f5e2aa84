#!/usr/bin/env python3
"""Checks one language's text file and writes the resource script of its library.

Every fault found is printed as "file:line: error: what is wrong"; with any fault nothing is written and the exit
code is 1. README.md describes the files.
"""

from __future__ import annotations

import argparse
import re
import sys
import unicodedata
from dataclasses import dataclass, field
from pathlib import Path

CAPTION = "caption"
ESCAPES = {"n": "\n", "\\": "\\"}
PRINTF = re.compile(r"%(?:%|[-+#0]*\d*(?:\.\d+)?(?:hh|h|ll|l|w|I64)?[diouxXeEfgGcCsSp])")
POSITIONAL = re.compile(r"%[1-9](?:![^!]*!)?(?![\w.])")
ACCESS_KEY = re.compile(r"&(.)", re.DOTALL)


@dataclass
class Faults:
    """Collects what is wrong, so that a translator sees all of it at once."""

    messages: list[str] = field(default_factory=list)

    def add(self, path: Path, line: int, message: str) -> None:
        self.messages.append(f"{path}:{line}: error: {message}")


@dataclass(frozen=True)
class Entry:
    """One line of the list of texts. The identifier is None for a caption."""

    name: str
    identifier: int | None
    longest: int
    line: int


@dataclass(frozen=True)
class Text:
    value: str
    line: int


@dataclass
class TextFile:
    path: Path
    texts: dict[str, Text] = field(default_factory=dict)
    last_line: int = 1


def read_lines(path: Path, faults: Faults) -> list[str]:
    """The file's lines, or none if it is not UTF-8. A byte order mark and CR LF line ends are tolerated."""
    data = path.read_bytes()
    try:
        content = data.decode("utf-8-sig")
    except UnicodeDecodeError as error:
        line = data.count(b"\n", 0, error.start) + 1
        faults.add(path, line, f"byte 0x{data[error.start]:02x} is not UTF-8: save the file as UTF-8")
        return []
    return content.replace("\r\n", "\n").removesuffix("\n").split("\n")


def parse_entry(line: str) -> tuple[str, str, int] | None:
    columns = re.fullmatch(r"([A-Z][A-Z0-9_]*)\s+([1-9]\d*|caption)\s+([1-9]\d*)\s+\S.*", line)
    return (columns[1], columns[2], int(columns[3])) if columns else None


def read_entries(path: Path, faults: Faults) -> list[Entry]:
    entries: list[Entry] = []
    seen: dict[str, int] = {}
    for number, line in enumerate(read_lines(path, faults), 1):
        if not line.strip() or line.startswith("#"):
            continue
        columns = parse_entry(line)
        if columns is None:
            faults.add(path, number, 'expected "NAME IDENTIFIER LONGEST note"')
            continue
        name, identifier, longest = columns
        for key in {name, identifier} - {CAPTION}:
            if key in seen:
                faults.add(path, number, f"{key} is already taken in line {seen[key]}")
            seen.setdefault(key, number)
        is_caption = identifier == CAPTION
        if not is_caption and int(identifier) > 65535:
            faults.add(path, number, f"{identifier} is no identifier: 65535 is the highest")
        entries.append(Entry(name, None if is_caption else int(identifier), longest, number))
    return entries


def check_header(path: Path, entries: list[Entry], list_path: Path, faults: Faults) -> None:
    """Compares the IDS_ constants of the C++ header with the list."""
    wanted = {entry.name: entry.identifier for entry in entries if entry.identifier is not None}
    found: set[str] = set()
    for number, line in enumerate(read_lines(path, faults), 1):
        constant = re.match(r"#define\s+(IDS_\w+)\s+(\d+)", line)
        if not constant:
            continue
        name, value = constant[1], int(constant[2])
        found.add(name)
        if name not in wanted:
            faults.add(path, number, f"{name} is not in {list_path.name}")
        elif wanted[name] != value:
            faults.add(path, number, f"{name} is {value} here and {wanted[name]} in {list_path.name}")
    for entry in entries:
        if entry.identifier is not None and entry.name not in found:
            faults.add(list_path, entry.line, f"{entry.name} is missing in {path.name}")


def unescape(raw: str) -> str | None:
    """The text that the notation stands for, or None if a backslash is followed by anything but n or a backslash."""
    parts = re.split(r"\\(.|$)", raw)
    for index in range(1, len(parts), 2):
        if parts[index] not in ESCAPES:
            return None
        parts[index] = ESCAPES[parts[index]]
    return "".join(parts)


def read_texts(path: Path, faults: Faults) -> TextFile:
    result = TextFile(path)
    for number, line in enumerate(read_lines(path, faults), 1):
        result.last_line = number
        if not line.strip() or line.startswith("#"):
            continue
        name, equals, raw = (part.strip() for part in line.partition("="))
        if not equals:
            faults.add(path, number, 'expected "NAME = text"')
        elif name in result.texts:
            faults.add(path, number, f"duplicate entry {name}: line {result.texts[name].line} has it too")
        else:
            value = unescape(raw)
            if value is None:
                faults.add(path, number, f'{name}: "\\" may only begin "\\n" (new line) or "\\\\" (a backslash)')
            result.texts[name] = Text(value or raw, number)
    return result


def utf16_length(text: str) -> int:
    return len(text.encode("utf-16-le")) // 2


def placeholders(text: str) -> tuple[list[str], list[str]]:
    """What a program fills in: numbered ones, whose order is free, and the others in their order."""
    return sorted(POSITIONAL.findall(text)), PRINTF.findall(POSITIONAL.sub("", text))


def access_keys(text: str) -> list[str]:
    return [letter for letter in ACCESS_KEY.findall(text + "\n") if letter != "&"]


def odd_character(text: str) -> str | None:
    for character in text:
        if character != "\n" and unicodedata.category(character) in ("Cc", "Cn", "Co", "Cs"):
            return character
    return "\ufffd" if "\ufffd" in text else None


def text_faults(entry: Entry, text: str, english: str) -> list[str]:
    """What is wrong with one text, in words."""
    if not text:
        return ["the text is empty"]
    faults = []
    length = utf16_length(text)
    if length > entry.longest:
        faults.append(f"the text is too long: {length} characters, {entry.longest} fit")
    odd = odd_character(text)
    if odd is not None:
        faults.append(f"U+{ord(odd):04X} is no character of a text: was the file converted wrongly?")
    if unicodedata.normalize("NFC", text) != text:
        faults.append("accents are separate characters: save the text in composed form (NFC)")
    if placeholders(text) != placeholders(english):
        faults.append(f'the placeholders differ from the English text "{english}"')
    if entry.identifier is None and len(access_keys(text)) != len(access_keys(english)):
        faults.append(f'the number of access keys ("&") differs from the English text "{english}"')
    return faults


def check_texts(texts: TextFile, english: TextFile, entries: list[Entry], faults: Faults) -> None:
    known = {entry.name for entry in entries}
    for name, text in texts.texts.items():
        if name not in known:
            faults.add(texts.path, text.line, f"unknown entry {name}")
    for entry in entries:
        text = texts.texts.get(entry.name)
        reference = english.texts.get(entry.name)
        if text is None:
            faults.add(texts.path, texts.last_line, f"missing entry {entry.name}")
            continue
        for message in text_faults(entry, text.value, reference.value if reference else text.value):
            faults.add(texts.path, text.line, f"{entry.name}: {message}")


def rc_literal(text: str) -> str:
    """A wide string literal in ASCII, so that no resource compiler's idea of code pages matters."""
    result = ""
    units = text.encode("utf-16-le")
    for index in range(0, len(units), 2):
        unit = int.from_bytes(units[index : index + 2], "little")
        special = {0x0A: "\\n", 0x22: '""', 0x5C: "\\\\"}
        result += special.get(unit, chr(unit) if 0x20 <= unit < 0x7F else f"\\x{unit:04x}")
    return f'L"{result}"'


def resource_script(entries: list[Entry], texts: TextFile) -> str:
    captions = [entry for entry in entries if entry.identifier is None]
    strings = [entry for entry in entries if entry.identifier is not None]
    lines = ['#include "language/resource_ids.h"', "", "LANGUAGE 0, 0", ""]
    lines += [f"#define {entry.name} {rc_literal(texts.texts[entry.name].value)}" for entry in captions]
    lines += ["STRINGTABLE", "BEGIN"]
    lines += [f"    {entry.name} {rc_literal(texts.texts[entry.name].value)}" for entry in strings]
    lines += ["END", "", '#include "language/library.rc"']
    return "\n".join(lines) + "\n"


def parse_arguments(arguments: list[str]) -> argparse.Namespace:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--list", type=Path, required=True, help="the list of texts, string_ids.txt")
    parser.add_argument("--header", type=Path, required=True, help="resource_ids.h")
    parser.add_argument("--english", type=Path, required=True, help="the English texts, the reference")
    parser.add_argument("--texts", type=Path, required=True, help="the texts of the language")
    parser.add_argument("--output", type=Path, required=True, help="resource script to write")
    return parser.parse_args(arguments)


def main(arguments: list[str]) -> int:
    options = parse_arguments(arguments)
    faults = Faults()
    entries = read_entries(options.list, faults)
    check_header(options.header, entries, options.list, faults)
    list_is_sound = not faults.messages
    texts = read_texts(options.texts, faults)
    # The English file's own faults are reported when its own library is made.
    english = read_texts(options.english, Faults())
    # A faulty list and an unreadable file have their own messages: do not add that every text is wrong.
    if list_is_sound and (texts.texts or not faults.messages):
        check_texts(texts, english, entries, faults)
    if faults.messages:
        print("\n".join(faults.messages), file=sys.stderr)
        return 1
    options.output.write_text(resource_script(entries, texts), encoding="ascii", newline="\n")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
