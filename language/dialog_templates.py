"""Reads the dialog templates out of a built library."""

from __future__ import annotations

import struct
from dataclasses import dataclass
from pathlib import Path

RT_DIALOG = 5
RESOURCE_DIRECTORY = 2  # the third entry of an image's data directories
CLASS_NAMES = {0x80: "BUTTON", 0x81: "EDIT", 0x82: "STATIC", 0x83: "LISTBOX", 0x84: "SCROLLBAR", 0x85: "COMBOBOX"}


@dataclass(frozen=True)
class Control:
    identifier: int
    class_name: str
    text: str
    style: int
    x: int
    y: int
    width: int
    height: int

    @property
    def right(self) -> int:
        return self.x + self.width

    @property
    def bottom(self) -> int:
        return self.y + self.height


@dataclass(frozen=True)
class Template:
    identifier: int
    caption: str
    style: int
    width: int
    height: int
    font: tuple[int, str] | None
    controls: list[Control]


class Reader:
    """A position in a template's bytes."""

    def __init__(self, data: bytes) -> None:
        self.data = data
        self.position = 0

    def take(self, layout: str) -> tuple:
        values = struct.unpack_from("<" + layout, self.data, self.position)
        self.position += struct.calcsize("<" + layout)
        return values

    def text(self) -> str:
        units = []
        while (unit := self.take("H")[0]) != 0:
            units.append(unit)
        return struct.pack(f"<{len(units)}H", *units).decode("utf-16-le")

    def text_or_number(self) -> str | int:
        if struct.unpack_from("<H", self.data, self.position)[0] == 0xFFFF:
            return self.take("HH")[1]
        return self.text()

    def align(self, size: int) -> None:
        self.position += -self.position % size


def parse_control(reader: Reader) -> Control:
    reader.align(4)
    _, _, style, x, y, width, height, identifier = reader.take("IIIhhhhI")
    kind = reader.text_or_number()
    text = reader.text_or_number()
    (extra,) = reader.take("H")
    reader.position += extra
    class_name = CLASS_NAMES.get(kind, str(kind)) if isinstance(kind, int) else kind.upper()
    return Control(identifier, class_name, text if isinstance(text, str) else "", style, x, y, width, height)


def parse_template(identifier: int, data: bytes) -> Template:
    """Takes the extended form only: it is what DIALOGEX makes."""
    reader = Reader(data)
    version, signature, _, _, style, count, _, _, width, height = reader.take("HHIIIHhhhh")
    if (version, signature) != (1, 0xFFFF):
        raise ValueError(f"template {identifier} is not DIALOGEX")
    reader.text_or_number()  # menu
    reader.text_or_number()  # window class
    caption = reader.text()
    font = None
    if style & 0x40:  # DS_SETFONT
        points, _, _, _ = reader.take("HHBB")
        font = (points, reader.text())
    return Template(identifier, caption, style, width, height, font, [parse_control(reader) for _ in range(count)])


def resource_section(image: bytes) -> tuple[int, int]:
    """The file position of an image's resources and what to take off their addresses to get file positions."""
    (header,) = struct.unpack_from("<I", image, 0x3C)
    section_count, optional_size = struct.unpack_from("<H12xH", image, header + 6)
    optional = header + 24
    directories = optional + (112 if struct.unpack_from("<H", image, optional)[0] == 0x20B else 96)
    (address,) = struct.unpack_from("<I", image, directories + 8 * RESOURCE_DIRECTORY)
    for index in range(section_count):
        size, start, _, position = struct.unpack_from("<IIII", image, optional + optional_size + 40 * index + 8)
        if start <= address < start + size:
            return address - start + position, start - position
    raise ValueError("no resources")


def directory_entries(image: bytes, base: int, offset: int) -> list[tuple[int, int]]:
    named, numbered = struct.unpack_from("<HH", image, base + offset + 12)
    return [struct.unpack_from("<II", image, base + offset + 16 + 8 * index) for index in range(named + numbered)]


def read_templates(path: Path) -> list[Template]:
    """All dialog templates of a library, in the order of their identifiers. ValueError if the file is no such thing."""
    image = path.read_bytes()
    templates = []
    try:
        base, shift = resource_section(image)
        for kind, names in directory_entries(image, base, 0):
            if kind != RT_DIALOG:
                continue
            for identifier, languages in directory_entries(image, base, names & 0x7FFFFFFF):
                for _, entry in directory_entries(image, base, languages & 0x7FFFFFFF):
                    address, size = struct.unpack_from("<II", image, base + entry)
                    templates.append(parse_template(identifier, image[address - shift : address - shift + size]))
    except struct.error as error:
        raise ValueError(f"damaged: {error}") from error
    return templates
