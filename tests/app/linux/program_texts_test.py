# SPDX-License-Identifier: MIT
"""program_texts_test.py PROGRAM...: no text in the Linux programs speaks of another system.

Looks at what the linker put into the programs, so that it also sees a text that no other
test names.
"""
import re
import struct
import sys
import unittest

PROGRAMS = sys.argv[1:]
FOREIGN = re.compile(r"\bMac\b|macOS|IOKit|SMC|Tp\*|Keychain|Ajustes do Sistema")
SHF_ALLOC, SHF_EXECINSTR = 2, 4
SHT_PROGBITS = 1


def data_sections(program):
    """The bytes of each section that holds constants or variables (elf(5), 64 bits)."""
    with open(program, "rb") as file:
        image = file.read()
    if image[:6] != b"\x7fELF\x02\x01":
        raise ValueError(f"{program} is no 64-bit little-endian ELF file")
    offset, = struct.unpack_from("<Q", image, 0x28)
    size, count = struct.unpack_from("<HH", image, 0x3A)
    for index in range(count):
        _, kind, flags, _, start, length = struct.unpack_from("<IIQQQQ", image,
                                                              offset + index * size)
        if kind == SHT_PROGBITS and flags & SHF_ALLOC and not flags & SHF_EXECINSTR:
            yield image[start:start + length]


def texts(section):
    """Every run of printable characters, read as UTF-8 and as UTF-16 at either alignment."""
    readings = [section.decode("utf-8", "replace")]
    readings += [section[start:].decode("utf-16-le", "replace") for start in (0, 1)]
    for reading in readings:
        yield from re.findall(r"[ -~\u00a0-\u024f\u2010-\u2030\u2192]{3,}", reading)


def texts_of(program):
    return {text for section in data_sections(program) for text in texts(section)}


class ProgramTextsTest(unittest.TestCase):
    def test_no_text_names_what_only_another_system_has(self):
        for program in PROGRAMS:
            foreign = sorted(text for text in texts_of(program) if FOREIGN.search(text))
            self.assertEqual(foreign, [], program)

    def test_the_search_sees_the_texts_that_are_there(self):
        """Both ways in which the programs keep texts: UTF-8 and the toolkit's UTF-16."""
        for program in PROGRAMS:
            found = texts_of(program)
            self.assertTrue(any("CPU · maior temperatura" in text for text in found), program)
            if program.endswith("vantora-settings"):
                self.assertTrue(any("settings-window" in text for text in found), program)

    def test_the_search_sees_what_it_looks_for(self):
        for text in ("Executável Codex selecionado para este Mac.", "temperatura (SMC)", "IOKit · x",
                     "18 chaves Tp* da família", "não lê o Keychain", "em Ajustes do Sistema →"):
            for encoding in ("utf-8", "utf-16-le"):
                section = b"\x01" + text.encode(encoding) + b"\0\0\0"
                self.assertTrue(any(FOREIGN.search(found) for found in texts(section)), text)


unittest.main(argv=sys.argv[:1], verbosity=2)
