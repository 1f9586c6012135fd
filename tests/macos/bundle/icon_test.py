# SPDX-License-Identifier: MIT
"""packaging/macos/Vantora.icns: every picture of an application's icon, the smallest two as
planes that hold the drawing. Needs ImageMagick's convert."""

import os
import struct
import subprocess
import unittest

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "../../.."))
PICTURES = {"ic04": 16, "ic05": 32, "ic11": 32, "ic12": 64, "ic07": 128, "ic13": 256,
            "ic08": 256, "ic14": 512, "ic09": 512, "ic10": 1024}


def entries():
    with open(os.path.join(ROOT, "packaging/macos/Vantora.icns"), "rb") as file:
        data = file.read()
    assert data[:4] == b"icns" and struct.unpack(">I", data[4:8])[0] == len(data)
    at = 8
    while at < len(data):
        kind, length = struct.unpack(">4sI", data[at:at + 8])
        yield kind.decode(), data[at + 8:at + length]
        at += length


def unpacked(data):
    plane, at = bytearray(), 0
    while at < len(data):
        code = data[at]
        if code < 128:
            plane += data[at + 1:at + 2 + code]
            at += 2 + code
        else:
            plane += bytes([data[at + 1]]) * (code - 125)
            at += 2
    return bytes(plane)


class TheIcon(unittest.TestCase):
    def test_has_every_picture_in_its_size(self):
        found = dict(entries())
        self.assertEqual(set(found), set(PICTURES))
        for kind, data in found.items():
            if not data.startswith(b"ARGB"):
                self.assertEqual(struct.unpack(">II", data[16:24]), (PICTURES[kind],) * 2)

    def test_has_the_drawing_in_the_planes_of_the_smallest(self):
        found = dict(entries())
        for kind in ("ic04", "ic05"):
            self.assertEqual(found[kind][:4], b"ARGB")
            self.assertEqual(len(unpacked(found[kind][4:])), 4 * PICTURES[kind] ** 2)
        # ic05 and ic11 are the same drawing in the same size.
        drawn = subprocess.run(["convert", "png:-", "-depth", "8", "rgba:-"], check=True,
                               input=found["ic11"], stdout=subprocess.PIPE).stdout
        planes, count = unpacked(found["ic05"][4:]), 32 * 32
        for pixel in range(count):
            alpha, *colour = (planes[channel * count + pixel] for channel in range(4))
            self.assertEqual([*colour, alpha], list(drawn[4 * pixel:4 * pixel + 4]))


if __name__ == "__main__":
    unittest.main()
