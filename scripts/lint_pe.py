#!/usr/bin/env python3
"""Checks the built Windows files: lint_pe.py FOLDER MODULE.def

Every DLL and EXE of the folder must import only libraries that are part of Windows, be marked for address space
randomisation and no-execute data, and carry a version resource. tsyprui.dll must export what its .def file lists, no
more and no less.
"""

import struct
import sys
from pathlib import Path

SYSTEM_LIBRARIES = {
    "advapi32.dll", "comctl32.dll", "comdlg32.dll", "compstui.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll",
    "ole32.dll", "oleaut32.dll", "prntvpt.dll", "psapi.dll", "shell32.dll", "shlwapi.dll", "user32.dll", "version.dll",
    "winspool.drv", "ws2_32.dll",
}  # fmt: skip
CHARACTERISTICS = {0x0020: "HIGH_ENTROPY_VA", 0x0040: "DYNAMIC_BASE", 0x0100: "NX_COMPAT"}
MACHINE_AMD64 = 0x8664
MAGIC_PE32_PLUS = 0x20B
RT_VERSION = 16
EXPORTS, IMPORTS, RESOURCES, DELAY_IMPORTS = 0, 1, 2, 13


class Image:
    """The headers and tables of a 64-bit PE file."""

    def __init__(self, path):
        self.data = path.read_bytes()
        header = self.number("<I", 0x3C)
        if self.data[:2] != b"MZ" or self.data[header : header + 4] != b"PE\0\0":
            raise ValueError("not a PE file")
        machine, sections, _, _, _, optional_size, _ = struct.unpack_from("<HHIIIHH", self.data, header + 4)
        optional = header + 24
        if machine != MACHINE_AMD64 or self.number("<H", optional) != MAGIC_PE32_PLUS:
            raise ValueError("not a 64-bit Windows file")
        self.characteristics = self.number("<H", optional + 70)
        count = self.number("<I", optional + 108)
        self.directories = [struct.unpack_from("<II", self.data, optional + 112 + 8 * i) for i in range(count)]
        self.sections = [
            struct.unpack_from("<8sIIII", self.data, optional + optional_size + 40 * i) for i in range(sections)
        ]

    def number(self, form, offset):
        return struct.unpack_from(form, self.data, offset)[0]

    def offset(self, address):
        """The place in the file of an address in the loaded image."""
        for _, virtual_size, start, raw_size, raw in self.sections:
            if start <= address < start + max(virtual_size, raw_size):
                return raw + address - start
        raise ValueError(f"address 0x{address:x} lies in no section")

    def text(self, address):
        start = self.offset(address)
        return self.data[start : self.data.index(b"\0", start)].decode("ascii")

    def directory(self, index):
        address = self.directories[index][0] if index < len(self.directories) else 0
        return self.offset(address) if address else None

    def imports(self):
        """The libraries that Windows loads with the file, at once or at first use."""
        for index, size, name_field in ((IMPORTS, 20, 12), (DELAY_IMPORTS, 32, 4)):
            entry = self.directory(index)
            while entry is not None and self.number("<I", entry + name_field):
                yield self.text(self.number("<I", entry + name_field))
                entry += size

    def exports(self):
        table = self.directory(EXPORTS)
        if table is None:
            return []
        count = self.number("<I", table + 24)
        if count == 0:
            return []
        names = self.offset(self.number("<I", table + 32))
        return [self.text(self.number("<I", names + 4 * i)) for i in range(count)]

    def resource_types(self):
        table = self.directory(RESOURCES)
        if table is None:
            return []
        count = self.number("<H", table + 12) + self.number("<H", table + 14)
        return [self.number("<I", table + 16 + 8 * i) for i in range(count)]


def faults_of(image, needs_imports):
    names = sorted({name.lower() for name in image.imports()})
    for name in names:
        if name not in SYSTEM_LIBRARIES:
            yield f"imports {name}, which is not one of Windows' libraries"
    if needs_imports and not names:
        yield "imports nothing"
    for bit, name in CHARACTERISTICS.items():
        if not image.characteristics & bit:
            yield f"lacks {name}"
    if RT_VERSION not in image.resource_types():
        yield "has no version resource"


def listed_exports(path):
    lines = path.read_text(encoding="utf-8").split("EXPORTS", 1)[1].splitlines()
    return sorted(line.split(";")[0].split("=")[0].split()[0] for line in lines if line.split(";")[0].strip())


def main(folder, definition):
    files = sorted(path for path in Path(folder).iterdir() if path.suffix.lower() in (".dll", ".exe"))
    count = 0
    for path in files:
        try:
            image = Image(path)
            # The language libraries hold resources only.
            faults = list(faults_of(image, not path.name.startswith("tsyprUI_")))
            exports = sorted(image.exports()) if path.name == "tsyprui.dll" else None
        except (ValueError, struct.error) as error:
            faults, exports = [str(error)], None
        wanted = listed_exports(Path(definition))
        if exports is not None and exports != wanted:
            faults.append(f"exports {', '.join(exports)} instead of {', '.join(wanted)}")
        for fault in faults:
            print(f"{path.name}: {fault}")
        count += len(faults)
    if not any(path.name == "tsyprui.dll" for path in files):
        print(f"{folder}: tsyprui.dll is missing")
        count += 1
    print(f"{len(files)} Windows files, {count} faults")
    return 1 if count else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:3]))
